#include "tests/support/SerializeFixtures.h"
#include "vumo/serialize/StreamSerializerRaw.h"

#include <sstream>
#include <string>

namespace vumo::Data
{
namespace
{
/// Reads and writes the values of single elements and members.
class StreamSerializerRawMemberTest : public test::SerializeFixture
{
protected:
    const StreamSerializerRaw& mFormat = *StreamSerializerRaw::theFormat();
};

TEST_F(StreamSerializerRawMemberTest, ValuesOfOneElement_GoThroughAHandle)
{
    const Structure& structure = registered("name=P:float[2]=f:string=s");
    const Structure& other = registered("name=Q:int32=a");
    Handle element(structure);
    std::string errors;
    std::istringstream in("0.5 1000.25 \"a b\" rest");
    EXPECT_EQ(mFormat.readStructure(structure, in, 9, element, errors), 0);
    std::string rest;
    in >> rest;
    EXPECT_EQ(rest, "rest");
    std::istringstream cut("0.5");
    EXPECT_EQ(mFormat.readStructure(structure, cut, 9, element, rest), 1);
    EXPECT_TRUE(cut.fail());
    Structure* const memberless = new Structure("M");
    Structure::registerStructure(*memberless);
    Handle nothing(*memberless);
    EXPECT_EQ(mFormat.readStructure(*memberless, in, 9, nothing, errors), 0) << errors;

    std::ostringstream out;
    element.setPositionByMemberName("f");
    EXPECT_EQ(mFormat.writeMember(element, 9, out, errors), 0);
    EXPECT_EQ(out.str(), "0.5 1000.25");
    std::istringstream bad("7x 8");
    EXPECT_EQ(mFormat.readMember(bad, 9, element, errors), 1);
    EXPECT_EQ(element.str(0) + " " + element.str(1), "0.5 8") << "the bad value keeps what was there";
    std::istringstream worse("x\n y \"a 7");
    EXPECT_EQ(mFormat.readStructure(structure, worse, 9, element, errors), 3);
    EXPECT_TRUE(worse.fail());
    worse.clear();
    worse >> rest;
    EXPECT_EQ(rest, "7") << "where the next value starts";

    Handle none(structure, nullptr);
    EXPECT_EQ(mFormat.writeMember(none, 9, out, errors), 1);
    EXPECT_EQ(mFormat.readMember(in, 9, none, errors), 1);
    EXPECT_EQ(mFormat.readStructure(structure, in, 9, none, errors), 1);
    EXPECT_EQ(mFormat.readStructure(other, in, 9, element, errors), 1);
    EXPECT_EQ(errors, "Float value on or about character 1 is invalid\n"
                      "Float value on or about character 0 is invalid\n"
                      "Float value on or about character 3 is invalid\n"
                      "String element not terminated on or about character 9\n"
                      "Member at record 9 not recognized as a float\n"
                      "Member at record 9 not recognized as a float\n"
                      "Element at record 9 is not one of Structure 'P'\n"
                      "Element at record 9 is not one of Structure 'Q'\n");
}

TEST_F(StreamSerializerRawMemberTest, ValuesOfOneElement_AreNotTakenFromAnInputThatHasFailed)
{
    Handle element(registered("name=P:string=s:int32=i"));
    std::string errors;
    std::istringstream failed("\"a\" 1");
    failed.setstate(std::ios::failbit);
    std::istream none(nullptr);
    for (std::istream* in : {static_cast<std::istream*>(&failed), &none})
    {
        for (const char* member : {"s", "i"})
        {
            element.setPositionByMemberName(member);
            EXPECT_EQ(mFormat.readMember(*in, 9, element, errors), 1);
        }
    }
    EXPECT_EQ(errors,
              "String value on or about character 0 is invalid\nInt32 value on or about character 0 is invalid\n"
              "String value on or about character -1 is invalid\n"
              "Int32 value on or about character -1 is invalid\n");
}

TEST_F(StreamSerializerRawMemberTest, ReadMember_LeavesTheInputAsExtractionDoes)
{
    const auto end = std::ios::eofbit;
    const auto failed = std::ios::eofbit | std::ios::failbit;
    const struct
    {
        const char* type;
        const char* text;
        int errorCount;
        std::ios::iostate state;
    } cases[] = {
        {"int32", "12", 0, end},       {"int32", "12 x", 0, std::ios::goodbit},
        {"int32", "", 1, failed},      {"int32", "x y", 1, std::ios::failbit},
        {"bool[2]", "t f", 0, end},    {"bool[2]", "t", 1, failed},
        {"string", "\"a b\"", 0, end}, {"string", "\"a\" x", 0, std::ios::goodbit},
        {"string", "", 1, end},        {"string", "\"a", 1, failed},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(std::string(row.type) + " " + row.text);
        Structure::deleteAllStructures();
        Handle element(registered(std::string("name=P:") + row.type + "=m"));
        std::istringstream in(row.text);
        std::string errors;
        EXPECT_EQ(mFormat.readMember(in, 9, element, errors), row.errorCount) << errors;
        EXPECT_EQ(in.rdstate(), row.state);

        test::BreakingBuffer buffer(row.text);
        std::istream broken(&buffer);
        mFormat.readMember(broken, 9, element, errors);
        EXPECT_EQ(broken.bad(), row.state == end || row.state == failed) << "where the end was met";
    }
}
} // namespace
} // namespace vumo::Data
