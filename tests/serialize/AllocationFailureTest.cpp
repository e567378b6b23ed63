#include "tests/support/Allocations.h"
#include "tests/support/SerializeFixtures.h"
#include "vumo/serialize/AssociationsSerializerRaw.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <memory>

namespace vumo::Data
{
namespace
{
using test::forEachAllocation;
using test::succeedsWithout;

constexpr char kStructure[] = "name=R:int32=a number:float[2]=pair:string=text";

/// Associations with all kinds of indices, and with every kind of text: short and long, plain and with escapes.
std::string associationsText()
{
    const std::string longText(60, 'x');
    return "channel\nname face\nstream\nname numbers\nindexType numeric\nstructure R\n"
           "0\n1 0.5 -1.25 \"plain\"\n7\n-2 1e+20 3 \"a \\\"quoted\\\" one, \\\\ and \\n" +
           longText + "\"\nendStream\nstream\nname pairs\nindexType pair\nstructure R\n2 3\n4 5 6 \"" + longText +
           "\"\nendStream\nendChannel\nchannel\nname node\nstream\nname texts\nindexType string\nstructure R\n" +
           longText + "\n8 9 10 \"\"\nendStream\nendChannel\nendAssociations\n";
}

/// A text with faults of every level, for their messages.
std::string faultyText()
{
    return "channel face\nname face\nwhat is this\nstream\nname s\nindexType pair\nstructure R\n1\n2 3 4 \"\"\n"
           "1 1\n1 x\n2 2\n1 2 3 bare\n3 3\n" +
           std::string(2000, '1') + "\nendStream\nendChannel\nunknown";
}

using AllocationFailureTest = test::SerializeFixture;

TEST_F(AllocationFailureTest, Reading_GivesAllOrNothingAndLeavesTheRegistryAlone)
{
    registered(kStructure);
    const std::set<Structure*> registry = Structure::allStructures();
    const AssociationsSerializerRaw& format = *AssociationsSerializerRaw::theFormat();
    forEachAllocation([&](std::size_t n, bool& hasFailed) {
        std::istringstream in(associationsText());
        std::string errors;
        std::unique_ptr<Associations> associations;
        const bool isRead = succeedsWithout(n, hasFailed, [&] {
            associations.reset(format.read(in, errors));
            return associations != nullptr;
        });
        if (isRead)
        {
            EXPECT_EQ(test::writtenBy(format, *associations), associationsText());
        }
        EXPECT_EQ(Structure::allStructures(), registry);
    });
}

TEST_F(AllocationFailureTest, AFaultyText_IsRefusedWithAllMessagesOrTheLackOfMemory)
{
    registered(kStructure);
    const AssociationsSerializerRaw& format = *AssociationsSerializerRaw::theFormat();
    const auto errorsOf = [&](std::string& errors) {
        std::istringstream in(faultyText());
        return std::unique_ptr<Associations>(format.read(in, errors)) != nullptr;
    };
    std::string expected;
    EXPECT_FALSE(errorsOf(expected));
    forEachAllocation([&](std::size_t n, bool& hasFailed) {
        std::string errors;
        EXPECT_FALSE(succeedsWithout(n, hasFailed, [&] { return errorsOf(errors); }));
        EXPECT_TRUE(errors.empty() || errors == expected) << errors;
    });
}

TEST_F(AllocationFailureTest, Writing_GivesTheTextAndLeavesWhatIsWrittenAlone)
{
    registered(kStructure);
    const AssociationsSerializerRaw& format = *AssociationsSerializerRaw::theFormat();
    std::istringstream in(associationsText());
    std::string errors;
    const std::unique_ptr<Associations> associations(format.read(in, errors));
    ASSERT_TRUE(associations) << errors;
    forEachAllocation([&](std::size_t n, bool& hasFailed) {
        std::ostringstream out;
        const bool isWritten =
            succeedsWithout(n, hasFailed, [&] { return format.write(*associations, out, errors) == 0; });
        EXPECT_TRUE(isWritten || hasFailed) << errors;
        if (isWritten)
        {
            EXPECT_EQ(out.str(), associationsText());
        }
        EXPECT_EQ(test::writtenBy(format, *associations), associationsText());
    });
}

TEST_F(AllocationFailureTest, AStructure_IsReadAsAWholeOrNotAtAll)
{
    const StructureSerializerRaw& format = *StructureSerializerRaw::theFormat();
    for (const std::string text : {kStructure, "name=R:int32:what[=x:float[2=y"})
    {
        forEachAllocation([&](std::size_t n, bool& hasFailed) {
            std::istringstream in(text);
            std::string errors;
            Ref<Structure> structure;
            const bool isRead = succeedsWithout(n, hasFailed, [&] {
                structure = Ref<Structure>(format.read(in, errors));
                return static_cast<bool>(structure);
            });
            EXPECT_TRUE(Structure::allStructures().empty());
            if (!isRead)
                return;
            std::ostringstream out;
            EXPECT_EQ(format.write(*structure, out), 0);
            EXPECT_EQ(out.str(), kStructure);
        });
    }
}
} // namespace
} // namespace vumo::Data
