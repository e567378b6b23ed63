#include "vumo/serialize/StructureSerializerRaw.h"

#include "tests/support/SerializeFixtures.h"

namespace vumo::Data
{
namespace
{
using namespace std::string_literals;

class StructureSerializerRawTest : public test::SerializeFixture
{
protected:
    static std::string written(const Structure& structure)
    {
        std::ostringstream out;
        EXPECT_EQ(StructureSerializerRaw::theFormat()->write(structure, out), 0);
        return out.str();
    }

    /// What is read from the text, written again; the messages when there is none.
    static std::string reread(const std::string& text)
    {
        std::istringstream in(text);
        std::string errors = "cleared";
        Structure* const structure = StructureSerializerRaw::theFormat()->read(in, errors);
        if (!structure)
            return errors;
        EXPECT_EQ(errors, "");
        EXPECT_EQ(structure->refCount(), 0);
        const std::string result = written(*structure);
        structure->ref();
        structure->unref();
        return result;
    }
};

using StructureSerializerRawGoldenTest = StructureSerializerRawTest;

TEST_F(StructureSerializerRawGoldenTest, Write_NamesTheMembersOfAStructureThatNobodyHolds)
{
    Structure* const structure = new Structure("My Structure");
    EXPECT_EQ(written(*structure), "name=My Structure");
    structure->addMember(Member::kInt32, 1, "ID");
    structure->addMember(Member::kFloat, 3, "Origin");
    structure->addMember(Member::kDoubleMatrix4x4, 4000000000U, "Poses");
    EXPECT_EQ(written(*structure), "name=My Structure:int32=ID:float[3]=Origin:dbl4x4[4000000000]=Poses");
    EXPECT_EQ(structure->refCount(), 0);
    structure->ref();
    structure->unref();
}

TEST_F(StructureSerializerRawGoldenTest, Read_GivesTheGoldenTextBack)
{
    const std::string text = test::goldenText("structure_raw.txt");
    EXPECT_EQ(reread(text) + "\n", text);
}

TEST_F(StructureSerializerRawTest, Read_TakesLooselyWrittenText)
{
    const struct
    {
        std::string text;
        std::string canonical;
    } cases[] = {
        {"name=S\n\n\n:int32=a", "name=S:int32=a"},
        {"  name = My Structure : int32 = ID ", "name=My Structure:int32=ID"},
        {"int32=ID:name=S", "name=S:int32=ID"},
        {"name=My Structure\r\nint32=ID\r\nfloat[3]=Origin\r\n", "name=My Structure:int32=ID:float[3]=Origin"},
        {"name=A:name=B:int8[ +007 ]=a", "name=B:int8[7]=a"},
        {"name=S:float[4294967295]=a:float[1]=b", "name=S:float[4294967295]=a:float=b"},
        {"name=S:int8=a:double=a", "name=S:int8=a"},
        {"name=S:name=T", "name=T"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), row.canonical) << row.text;
}

TEST_F(StructureSerializerRawTest, Read_ReportsEveryFaultyField)
{
    const std::string tooFew = "Structures must have a name and at least one member";
    const std::string separator = "Member type and name must be separated by '='";
    const std::string nameless = "Name is missing; member type 'name' is used to set it";
    const auto dimension = [](const std::string& type) {
        return "Member '" + type + "' needs numeric value for dimension specifier";
    };
    const struct
    {
        std::string text;
        std::string errors;
    } cases[] = {
        {"", tooFew},
        {" \n\t ", tooFew},
        {"name=S", tooFew},
        {"name=S:int32=a:int32", separator},
        {"name=S:int32==a", separator},
        {"name=S:int32=a=", separator},
        {"name=S:int32= ", separator},
        {":name=S:int32=a", separator},
        {"name=S: :int32=a", separator},
        {"name=:int32=a", separator + "\n" + nameless},
        {"name=S:=a", "Member type '' not recognized"},
        {"name=S:flot=a", "Member type 'flot' not recognized"},
        {"name=S:invalid=a", "Member type 'invalid' not recognized"},
        {"name=S:float [3]=a", "Member type 'float [3]' not recognized"},
        {"name=S:flot[3]=a", "Member type 'flot[3]' not recognized"},
        {"name=S:[3]=a", "Member '[3]' needs name before dimension specifier"},
        {"name=S:float[3=a", "Member 'float[3' has opening bracket '[' but no closing bracket ']' for dimension "
                             "specification"},
        {"name=S:float3]=a", "Member 'float3]' has closing bracket ']' but no opening bracket '[' for dimension "
                             "specification"},
        {"name=S:float[]=a", dimension("float[]")},
        {"name=S:float[x]=a", dimension("float[x]")},
        {"name=S:float[3x]=a", dimension("float[3x]")},
        {"name=S:float[3]x=a", dimension("float[3]x")},
        {"name=S:float[3][4]=a", dimension("float[3][4]")},
        {"name=S:float]3[=a", dimension("float]3[")},
        {"name=S:float]x[3]=a", "Member type 'float]x[3]' not recognized"},
        {"name=S:float[0]=a", dimension("float[0]")},
        {"name=S:float[-1]=a", dimension("float[-1]")},
        {"name=S:float[1.000]=a", dimension("float[1.000]")},
        {"name=S:float[4294967296]=a", dimension("float[4294967296]")},
        {"name=S:float[99999999999999999999]=a", dimension("float[99999999999999999999]")},
        {"flot=a:int32", "Member type 'flot' not recognized\n" + separator + "\n" + nameless},
        {"name=S\0T:int32=a"s, "Structures must not have a zero byte, where a name would end"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), row.errors) << row.text;
}

TEST_F(StructureSerializerRawTest, Read_TakesNoPartOfABrokenOrFailedInput)
{
    const StructureSerializerRaw& format = *StructureSerializerRaw::theFormat();
    EXPECT_EQ(test::errorsOfBrokenInput(format, "name=S:int32=a"), "Error in stream while reading");
    std::istringstream failed("name=S:int32=a");
    failed.setstate(std::ios::failbit);
    std::string errors;
    EXPECT_EQ(format.read(failed, errors), nullptr);
    EXPECT_EQ(errors, "Structures must have a name and at least one member");
}

TEST_F(StructureSerializerRawTest, Read_DropsAnyNumberOfBlanksAndEmptyFields)
{
    const std::string::size_type megabyte = 1U << 20U;
    const std::string text =
        "name=S" + std::string(megabyte, '\n') + std::string(megabyte, ':') + "int32=a" + std::string(megabyte, ' ');
    EXPECT_EQ(reread(text), "name=S:int32=a");
}

TEST_F(StructureSerializerRawTest, Read_RefusesAnElementThatNoMemoryCanHold)
{
    const auto matrices = [](unsigned int members) {
        std::string text = "name=S";
        for (unsigned int i = 0; i < members; ++i)
            text += ":dbl4x4[4294967295]=m" + std::to_string(i);
        return text;
    };
    const unsigned int most = 1U << 9U; // of 2^39 bytes less 128 each
    EXPECT_EQ(reread(matrices(most)), matrices(most));
    EXPECT_EQ(reread(matrices(most + 1)), "Structures must have elements of less than 281474976710656 bytes");
}
} // namespace
} // namespace vumo::Data
