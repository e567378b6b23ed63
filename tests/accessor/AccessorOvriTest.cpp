#include "vumo/accessor/AccessorOvri.h"

#include "tests/accessor/AccessorFixture.h"

#include <limits>

namespace vumo::test
{
namespace
{
using AccessorOvriTest = AccessorFixture;

TEST_F(AccessorOvriTest, TruncateFile_CutsToTheLengthOrSaysNo)
{
    const ScratchFile file(".bin");
    file.setBytes("0123456789");
    EXPECT_TRUE(AccessorOvri::truncateFile(file.name(), 4));
    EXPECT_EQ(file.bytes(), "0123");
    EXPECT_FALSE(AccessorOvri::truncateFile(file.name(), std::numeric_limits<std::uint64_t>::max()));
    EXPECT_EQ(file.bytes(), "0123");
    EXPECT_FALSE(AccessorOvri::truncateFile(file.name() + " not there", 0));
}

TEST_F(AccessorOvriTest, Deserialize_AppendsWhyItFailed)
{
    std::string errors = "kept, ";
    EXPECT_EQ(AccessorOvri::deserializeStructure("cooked", "name=A:float=Value", errors), nullptr);
    EXPECT_EQ(errors, "kept, Could not find serializer for format cooked");

    errors = "kept, ";
    EXPECT_EQ(AccessorOvri::deserializeStructure("raw", "name=A", errors), nullptr);
    EXPECT_EQ(errors, "kept, Structures must have a name and at least one member");

    errors = "kept, ";
    Associations result;
    result.channel("old");
    EXPECT_FALSE(AccessorOvri::deserializeAssociations("cooked", "endAssociations\n", result, errors));
    EXPECT_EQ(errors, "kept, Could not find serializer for format cooked");
    errors = "kept, ";
    EXPECT_FALSE(AccessorOvri::deserializeAssociations("raw", "\n", result, errors));
    EXPECT_EQ(errors, "kept, Missing Associations keyword on or about character 1\n"
                      "1 error found, Associations not created\n");
    EXPECT_EQ(result.size(), 1U) << "what was there is left alone";
}

TEST_F(AccessorOvriTest, Deserialize_MakesWhatTheTextSays)
{
    std::string errors;
    const Ref<const Structure> structure(AccessorOvri::deserializeStructure("raw", "name=Weight:float=Value", errors));
    ASSERT_TRUE(structure) << errors;
    EXPECT_EQ(*structure, *valueStructure("Weight"));
    EXPECT_TRUE(Structure::allStructures().empty());

    Associations result;
    result.channel("old");
    EXPECT_TRUE(AccessorOvri::deserializeAssociations("raw", "endAssociations\n", result, errors)) << errors;
    EXPECT_TRUE(result.empty());
}
} // namespace
} // namespace vumo::test
