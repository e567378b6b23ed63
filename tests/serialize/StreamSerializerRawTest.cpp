#include "vumo/serialize/StreamSerializerRaw.h"

#include "tests/support/RandomText.h"
#include "tests/support/SerializeFixtures.h"
#include "vumo/data/IndexPair.h"
#include "vumo/data/IndexString.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace vumo::Data
{
namespace
{
using namespace std::string_literals;

class StreamSerializerRawTest : public test::RawFormatFixture<StreamSerializerRaw>
{
protected:
    /// The text of a stream of structure P with that type, whose elements 0, 1 ... are these lines.
    static std::string streamOf(const std::string& type, const std::vector<std::string>& lines)
    {
        Structure::deleteAllStructures();
        registered("name=P:" + type + "=m");
        std::string text = "name S\nindexType numeric\nstructure P\n";
        for (std::size_t i = 0; i < lines.size(); ++i)
            text += std::to_string(i) + "\n" + lines[i] + "\n";
        return text + "endStream\n";
    }
};

/// What closes these messages, which are one error each.
std::string summaryOf(const std::string& messages)
{
    const auto count = std::count(messages.begin(), messages.end(), '\n') + 1;
    return "\n" + std::to_string(count) + (count > 1 ? " errors" : " error") + " found, Stream not created\n";
}

using StreamSerializerRawGoldenTest = StreamSerializerRawTest;
using StreamSerializerRawPropertyTest = StreamSerializerRawTest;

TEST_F(StreamSerializerRawGoldenTest, Write_GivesTheGoldenText)
{
    const Structure& structure = registered(test::goldenText("structure_raw.txt"));
    Stream stream(structure, "All Types");
    stream.setIndexType("pair");
    Handle element(structure);
    stream.setElement(Index(IndexPair(7, 1)), element);
    const struct
    {
        const char* member;
        const char* text;
    } values[] = {{"b", "true"},
                  {"d", "0.1"},
                  {"dm", "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
                  {"fm", "0 0 0 0 0.5 0 0 0 0 0.5 0 0 0 0 -1 0"},
                  {"i8", "-128"},
                  {"i16", "-32768"},
                  {"i32", "-2147483648"},
                  {"i64", "-9223372036854775808"},
                  {"s", "say \"hi\"  now\\n\n"},
                  {"u8", "255"},
                  {"u16", "65535"},
                  {"u32", "4294967295"},
                  {"u64", "18446744073709551615"}};
    for (const auto& value : values)
        test::setText(element, value.member, value.text);
    test::setText(element, "f", "0.5", 0);
    test::setText(element, "f", "-1.25", 1);
    test::setText(element, "f", "1e10", 2);
    stream.setElement(Index(IndexPair(0, 4294967295U)), element);

    EXPECT_EQ(test::writtenBy(mFormat, stream), test::goldenText("stream_raw.txt"));
}

TEST_F(StreamSerializerRawGoldenTest, Read_GivesTheValuesOfTheGoldenText)
{
    registered(test::goldenText("structure_raw.txt"));
    std::string errors;
    const std::unique_ptr<Stream> stream = read(test::goldenText("stream_raw.txt"), errors);
    ASSERT_NE(stream, nullptr) << errors;
    EXPECT_EQ(stream->name(), "All Types");
    EXPECT_EQ(stream->indexType(), "pair");
    EXPECT_EQ(stream->elementCount(), 2U);

    Handle element = stream->element(Index(IndexPair(0, 4294967295U)));
    const struct
    {
        const char* member;
        unsigned int i;
        const char* text;
    } values[] = {{"b", 0, "true"},
                  {"d", 0, "0.1"},
                  {"dm", 0, "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16"},
                  {"f", 1, "-1.25"},
                  {"f", 2, "1e+10"},
                  {"i8", 0, "-128"},
                  {"i64", 0, "-9223372036854775808"},
                  {"s", 0, "say \"hi\"  now\\n\n"},
                  {"s", 1, ""},
                  {"u8", 0, "255"},
                  {"u64", 0, "18446744073709551615"}};
    for (const auto& value : values)
    {
        ASSERT_TRUE(element.setPositionByMemberName(value.member));
        EXPECT_EQ(element.str(value.i), value.text) << value.member;
    }
}

TEST_F(StreamSerializerRawTest, Read_TakesOneValueOfEachType)
{
    const struct
    {
        const char* type;
        const char* line;
        const char* written; // or all messages but the summary
    } cases[] = {
        {"bool", "T", "true"},
        {"bool", "0", "false"},
        {"bool", "TRUE",
         "Boolean on or about character 43 has invalid value 'TRUE'. Use 't', 'true', '1', 'f', "
         "'false', '0' only."},
        {"bool", "yes",
         "Boolean on or about character 42 has invalid value 'yes'. Use 't', 'true', '1', 'f', "
         "'false', '0' only."},
        {"int8", "-128", "-128"},
        {"int8", "128", "Int8 value on or about character 42 is invalid"},
        {"uint8", "65", "65"},
        {"uint8", "-1", "UInt8 value on or about character 41 is invalid"},
        {"uint16", "-1", "UInt16 value on or about character 41 is invalid"},
        {"uint32", "-1", "4294967295"},
        {"int32", "12abc", "Int32 value on or about character 41 is invalid"},
        {"int32[2]", "12.5 6", "Int32 value on or about character 41 is invalid"},
        {"int32[2]", "12", "Int32 value on or about character 41 is invalid"},
        {"uint64", "18446744073709551616", "UInt64 value on or about character 59 is invalid"},
        {"double", "1e999", "Double value on or about character 44 is invalid"},
        {"float", "1,5", "Float value on or about character 40 is invalid"},
        {"flt4x4", "1 1 1 1 1 x",
         "Float matrix on or about character 49 has invalid value at row 1, column 1\n"
         "Float matrix on or about character 50 has invalid value at row 1, column 2"},
        {"dbl4x4", "1 1 1 1 1 1 1 1 1 1 1 1 1 1 1",
         "Double matrix on or about character 68 has invalid value at row 3, column 3"},
        {"string", "\"  a \t b \"", "\"  a \t b \""},
        {"string", "\"\\\"\\\\\\n\\\\n\\x\\t\"", "\"\\\"\\\\\\n\\\\n\\\\x\\\\t\""},
        {"string", "'a'", "String element on or about character 39 must be enclosed in double quotes instead of '''"},
        {"string", "\"a b\\\"", "String element not terminated on or about character 45"},
        {"string", "\"\"\"\"", "String value on or about character 41 is invalid"},
        {"string[2]", "\"\"", "String value on or about character 41 is invalid"},
        {"int32", "1 \t2 3 ", "Text '2 3' on or about character 42 is left over behind the last value at record 5"},
        {"bool[3]", "t x y",
         "Boolean on or about character 42 has invalid value 'x'. Use 't', 'true', '1', 'f', "
         "'false', '0' only.\n"
         "Boolean on or about character 44 has invalid value 'y'. Use 't', 'true', '1', 'f', "
         "'false', '0' only."},
        {"int32[4]", "12abc 7 99999999999\t8",
         "Int32 value on or about character 41 is invalid\nInt32 value on or about character 58 is invalid"},
        {"string=s:int32", "\"a 7", "String element not terminated on or about character 43"},
        {"string[2]=s:int8", "\"a b\"\"c\" -129",
         "String value on or about character 44 is invalid\n"
         "String element on or about character 42 must be enclosed in double quotes instead of 'b'\n"
         "Int8 value on or about character 52 is invalid"},
        {"bool=b:string=s:int32[4000000000]", "x y 1",
         "Boolean on or about character 40 has invalid value 'x'. Use 't', 'true', '1', 'f', "
         "'false', '0' only.\n"
         "String element on or about character 41 must be enclosed in double quotes instead of 'y'\n"
         "Int32 value on or about character 44 is invalid"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(std::string(row.type) + " " + row.line);
        const std::string text = streamOf(row.type, {row.line});
        const std::string result = reread(text);
        const bool isRead = result.rfind("name S\n", 0) == 0;
        EXPECT_EQ(result, isRead ? streamOf(row.type, {row.written}) : row.written + summaryOf(row.written));
    }
    const std::string zero = streamOf("string", {"\"a\0b\""s});
    EXPECT_EQ(reread(zero), "String element on or about character 42 has a zero byte, where its value would end\n"
                            "1 error found, Stream not created\n");
}

TEST_F(StreamSerializerRawTest, Read_ReportsEveryFaultWithItsPlace)
{
    registered("name=P:int32=a");
    const std::string head = "name S\nstructure P\n";
    const struct
    {
        std::string text;
        std::string errors;
    } cases[] = {
        {"", "Stream name not specified at record 0\nStructure name not specified at record 0\n2 errors"},
        {"\n name S \n\nendStream", "Structure name not specified at record 4\n1 error"},
        {"structure P\n", "Stream name not specified at record 1\n1 error"},
        {"name S\nstructure Q\n0\n1\n1\nx\nendStream", "Structure 'Q' not found\n1 error"},
        {"name S\nstructure P\0\nendStream"s, "Structure 'P\0' not found\n1 error"s},
        {"name S\nstructure\nendStream", "Structure '' not found\n1 error"},
        {"indexType color\n" + head + "0\n1\n", "Creator for index type 'color' not found\n1 error"},
        {"name S\nstructure Q\n0\n", "Structure 'Q' not found\n1 error"},
        {"structure P\n\n0\n1\nname S\n1\n2\nname T\nname U\nendStream",
         "Index data encountered before Stream name specified at record 3\n"
         "Value 'name T' on or about character 28 is not a legal index (code 1) of type numeric\n2 errors"},
        {"0\nname S\nstructure Q\nendStream",
         "Index data encountered before Stream name specified at record 1\n"
         "Index data encountered before Structure name specified at record 1\nStructure 'Q' not found\n3 errors"},
        {head + "1 2\n3\nindexType pair\n4\n5\n1 2\nx\n",
         "Value '1 2' on or about character 19 is not a legal index (code 2) of type numeric\n"
         "Value '4' on or about character 40 is not a legal index (code 1) of type pair\n"
         "Int32 value on or about character 48 is invalid\n3 errors"},
        {"0\n1\n", "Index data encountered before Stream name specified at record 1\n"
                   "Index data encountered before Structure name specified at record 1\n2 errors"},
        {"names S\n1\n", "Index data encountered before Stream name specified at record 1\n"
                         "Index data encountered before Structure name specified at record 1\n2 errors"},
        {head + "-1\n7\n  0x\n1\n2 3\n1\nendStream",
         "Value '-1' on or about character 19 is not a legal index (code 1) of type numeric\n"
         "Value '0x' on or about character 26 is not a legal index (code 1) of type numeric\n"
         "Value '2 3' on or about character 31 is not a legal index (code 2) of type numeric\n3 errors"},
        {"indexType pair\n" + head + "4\n1\n",
         "Value '4' on or about character 34 is not a legal index (code 1) of type pair\n1 error"},
        {head + "0\n1\n5\n", "Index '5' at record 5 has no data line\n1 error"},
        {head + "5\nendStream\nname T\n", "Index '5' at record 3 has no data line\n1 error"},
        {head + "0\nx\n1\n2\n2\ny\n", "Int32 value on or about character 21 is invalid\n"
                                      "Int32 value on or about character 29 is invalid\n2 errors"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), row.errors + " found, Stream not created\n") << row.text;
}

TEST_F(StreamSerializerRawTest, Read_TakesLooselyWrittenText)
{
    const std::string canonical = streamOf("int32", {"7", "8"});
    EXPECT_EQ(reread(canonical), canonical);
    const struct
    {
        const char* fault;
        std::string text;
    } cases[] = {
        {"blanks and line ends", " \r\n\tstructure \t P \r\n\n name  S\r\n\n 0\t\r\n\n  7 \r\n1\n8\nendStream"},
        {"no endStream", "name S\nstructure P\n0\n7\n1\n8"},
        {"the last of two names counts", "name T\nname S\nstructure P\n1\n8\n0\n7\nendStream\nbogus"},
        {"an index type after the rest", "name S\nstructure P\nindexType numeric\n0\n9\n0\n7\n1\n8\n"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), canonical) << row.fault;
    EXPECT_EQ(reread("name\nstructure P\n"), "name \nindexType numeric\nstructure P\nendStream\n");
}

TEST_F(StreamSerializerRawTest, Read_KeywordsAreIndicesAfterTheFirstIndex)
{
    registered("name=P:int32=a");
    const std::string text = "name S\nindexType string\nstructure P\n"
                             "Shoulder  left\n1\nendStreams\n4\nname T\n2\nstructure\n3\nendStream\n";
    EXPECT_EQ(reread(text), text);
}

TEST_F(StreamSerializerRawTest, ALineOverTheLimit_IsAnErrorThatNamesItsRecord)
{
    const std::string fits = "\"" + std::string(1021, 'x') + "\"";
    const std::string canonical = streamOf("string", {fits, "\"\""});
    EXPECT_EQ(reread(canonical), canonical);
    const std::string tooLong = "\"" + std::string(5000, 'x') + "\"";
    const std::string summary = " is longer than 1023 characters\n1 error found, Stream not created\n";
    const struct
    {
        std::string text;
        const char* place;
    } cases[] = {
        {streamOf("string", {tooLong, "\"\""}), "record 5 on or about character 39"},
        {"name S\nstructure P\n" + std::string(2000, ' ') + "\n\"\"\n", "record 3 on or about character 19"},
        {streamOf("string", {"\"\"", fits + " "}), "record 7 on or about character 44"},
        {"\n name " + std::string(1020, 'n') + "\nstructure P\n0\n\"\"\n", "record 2 on or about character 2"},
        {"name S\nstructure P" + std::string(1020, 'n') + "\n0\n\"\"\n", "record 2 on or about character 7"},
        {"name S\nstructure P\nindexType " + std::string(1020, 'n') + "\nx\n\"\"\n",
         "record 3 on or about character 19"},
        {"name S\nstructure P\n" + std::string(1024, '0') + "\n\"\"\n1\n\"\"\n", "record 3 on or about character 19"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(reread(row.text), "Line at " + std::string(row.place) + summary);
}

TEST_F(StreamSerializerRawTest, Read_AllocatesNothingByThePromiseOfAStructure)
{
    EXPECT_EQ(reread(streamOf("dbl4x4[4294967295]", {"1 2"})),
              "Double matrix on or about character 42 has invalid value at row 0, column 2\n"
              "1 error found, Stream not created\n");
}

TEST_F(StreamSerializerRawTest, AnElementWithoutMembers_HasABlankDataLine)
{
    Structure* const structure = new Structure("Empty");
    Structure::registerStructure(*structure);
    Stream stream(*structure, "S");
    stream.setElement(3, Handle(*structure));
    stream.setElement(8, Handle(*structure));
    const std::string text = "name S\nindexType numeric\nstructure Empty\n3\n\n8\n\nendStream\n";
    EXPECT_EQ(test::writtenBy(mFormat, stream), text);
    EXPECT_EQ(reread(text), text);
    EXPECT_EQ(reread("name S\nstructure Empty\n3\n8\nendStream\n"), text);

    Stream dense(*structure, "S");
    dense.useDenseStorage(true);
    dense.setElement(1, Handle(*structure));
    EXPECT_EQ(test::writtenBy(mFormat, dense), "name S\nindexType numeric\nstructure Empty\n0\n\n1\n\nendStream\n");
}

TEST_F(StreamSerializerRawTest, Write_HonoursTheFormatOfTheOutputAndLeavesItAlone)
{
    registered("name=P:double=d:int32=i");
    Stream stream(*Structure::structureByName("P"), "S");
    Handle element(stream.structure());
    const double value = 1.0 / 3.0;
    element.set(0, value);
    test::setText(element, "i", "1000000");
    stream.setElement(0, element);

    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(17);
    out << std::hex << std::showpos << std::scientific << std::uppercase;
    out.width(40);
    std::string errors;
    EXPECT_EQ(mFormat.write(stream, out, errors), 0);
    const std::string text = "name S\nindexType numeric\nstructure P\n0\n3.33333333333333315E-01 1000000\nendStream\n";
    EXPECT_EQ(out.str(), text);
    EXPECT_EQ(out.width(), 40);
    EXPECT_EQ(out.precision(), 17);

    const std::unique_ptr<Stream> copy = read(text, errors);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->element(0).get<double>(), value);
}

TEST_F(StreamSerializerRawTest, Write_CountsNumbersThatAreRoundedBeyondTheirRange)
{
    registered("name=P:double=d:float=f");
    Stream stream(*Structure::structureByName("P"), "S");
    Handle element(stream.structure());
    element.set(0, -std::numeric_limits<double>::max());
    element.setPositionByMemberName("f");
    element.set(0, std::numeric_limits<float>::max());
    stream.setElement(0, element);
    for (const std::ios::fmtflags flags : {std::ios::fmtflags(), std::ios::scientific, std::ios::fixed})
    {
        for (int precision = 0; precision < 20; ++precision)
        {
            std::ostringstream out;
            out.setf(flags, std::ios::floatfield);
            out.precision(precision);
            std::string errors;
            const int count = mFormat.write(stream, out, errors);
            std::string readErrors;
            EXPECT_EQ(count == 0, read(out.str(), readErrors) != nullptr) << out.str() << readErrors;
            EXPECT_EQ(count > 0,
                      errors.find("with so few digits it is beyond the range of its type") != std::string::npos);
        }
    }
}

/// Counts how often it is flushed.
class FlushCounter : public std::stringbuf
{
public:
    int count() const { return mCount; }

protected:
    int sync() override
    {
        ++mCount;
        return 0;
    }

private:
    int mCount = 0;
};

TEST_F(StreamSerializerRawTest, Write_FlushesEveryLine)
{
    FlushCounter buffer;
    std::ostream out(&buffer);
    std::string errors;
    EXPECT_EQ(mFormat.write(Stream(registered("name=P:int32=a"), "S"), out, errors), 0);
    EXPECT_EQ(buffer.count(), 4);

    std::istringstream in(buffer.str());
    in.tie(&out);
    EXPECT_NE(std::unique_ptr<Stream>(mFormat.read(in, errors)), nullptr);
    EXPECT_EQ(buffer.count(), 8) << "and before each line that is waited for";
}

TEST_F(StreamSerializerRawTest, Write_CountsAFailedOutput)
{
    std::ostringstream out;
    out.setstate(std::ios::failbit);
    std::string errors = "before\n";
    EXPECT_EQ(mFormat.write(Stream(registered("name=P:int32=a"), "S"), out, errors), 1);
    EXPECT_EQ(errors, "before\nError in stream while writing.\n1 error found, Stream may not be written correctly\n");
}

/// Fills the member that the handle is on with random numbers or texts.
void randomize(Handle& element, test::Random& random)
{
    std::string errors;
    for (unsigned int i = 0; i < element.dataLength(); ++i)
    {
        std::string numbers;
        for (int n = 0; n < 16; ++n)
            numbers += std::to_string(random.below(element.dataType() == Member::kBoolean ? 2 : 128)) + " ";
        element.fromStr(element.dataType() == Member::kString ? test::randomValue(random) : numbers, i, errors);
    }
    EXPECT_EQ(errors, "");
}

TEST_F(StreamSerializerRawPropertyTest, WhatIsWritten_ReadsBackAndIsWrittenAlike)
{
    test::Random random;
    SCOPED_TRACE(random.seedText());
    const Structure& structure = registered(test::goldenText("structure_raw.txt"));
    for (const char* indexType : {"numeric", "pair", "string"})
    {
        Stream stream(structure, "S");
        stream.setIndexType(indexType);
        for (int n = 0; n < 50; ++n)
        {
            Handle element(structure);
            for (unsigned int i = 0; i < structure.memberCount(); ++i)
            {
                element.setPositionByMemberIndex(i);
                randomize(element, random);
            }
            const std::string number = std::to_string(random.below(4294967295U));
            const std::string index = indexType == "numeric"s ? number : number + " " + std::to_string(n);
            stream.setElement(Index::doCreate(indexType, index), element);
        }
        std::ostringstream out;
        out.precision(17);
        std::string errors;
        EXPECT_EQ(mFormat.write(stream, out, errors), 0) << errors;
        const std::unique_ptr<Stream> copy = read(out.str(), errors);
        ASSERT_NE(copy, nullptr) << errors;
        EXPECT_EQ(copy->elementCount(), stream.elementCount());
        std::ostringstream again;
        again.precision(17);
        EXPECT_EQ(mFormat.write(*copy, again, errors), 0);
        EXPECT_EQ(again.str(), out.str());
    }
}

TEST_F(StreamSerializerRawTest, Read_CountsWhatAnIndexTypeOfSomebodyElseThrows)
{
    Index::registerType("throwing", [](const std::string& text) {
        if (text == "5")
            throw 5;
        return Index(static_cast<unsigned>(std::stoul(text)));
    });
    registered("name=P:int32=m");
    std::string errors;
    EXPECT_EQ(read("name S\nindexType throwing\nstructure P\nsix\n1\n7\n2\n5\n3\nendStream\n", errors), nullptr);
    EXPECT_EQ(errors, "Value 'six' on or about character 38 is not a legal index (code 1) of type throwing\n"
                      "Value '5' on or about character 48 is not a legal index (code 1) of type throwing\n"
                      "2 errors found, Stream not created\n");
}
} // namespace
} // namespace vumo::Data
