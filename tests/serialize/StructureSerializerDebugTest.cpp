#include "vumo/serialize/StructureSerializerDebug.h"

#include "tests/support/SerializeFixtures.h"
#include "vumo/foundation/Print.h"
#include "vumo/serialize/SerializerInitializer.h"
#include "vumo/serialize/StructureSerializerRaw.h"

namespace vumo::Data
{
namespace
{
using StructureSerializerDebugTest = test::SerializeFixture;

TEST_F(StructureSerializerDebugTest, TheFormat_IsFoundOnceItIsRegisteredAndIsNeverTheDefault)
{
    const StructureSerializer* const debug = StructureSerializerDebug::theFormat();
    EXPECT_EQ(StructureSerializer::formatByName("debug"), nullptr);
    const SerializerInitializer<StructureSerializerDebug> initializer;
    EXPECT_EQ(StructureSerializer::formatByName("debug"), debug);
    EXPECT_EQ(StructureSerializer::defaultFormat(), StructureSerializerRaw::theFormat());
    EXPECT_EQ(debug->formatType(), StructureSerializerDebug::structureFormatType);
}

TEST_F(StructureSerializerDebugTest, Read_RefusesAnything)
{
    for (const char* text : {"", "name=S:int32=a"})
    {
        std::istringstream in(text);
        std::string errors = "before";
        EXPECT_EQ(StructureSerializerDebug::theFormat()->read(in, errors), nullptr);
        EXPECT_EQ(errors, "Cannot read the debug format");
    }
}

TEST_F(StructureSerializerDebugTest, Write_PrintsAStructureThatNobodyHoldsAndLeavesItAlive)
{
    Structure* const structure = Structure::create();
    structure->addMember(Member::kFloat, 3, "Origin");
    std::ostringstream out;
    std::ostringstream expected;
    vumo::Debug::Print printer(expected);
    EXPECT_EQ(StructureSerializerDebug::theFormat()->write(*structure, out), 0);
    Structure::Debug(structure, printer);
    EXPECT_EQ(out.str(), expected.str());
    EXPECT_NE(out.str(), "");
    EXPECT_EQ(structure->refCount(), 0);
    structure->ref();
    structure->unref();
}
} // namespace
} // namespace vumo::Data
