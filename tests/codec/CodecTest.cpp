#include "tests/support/DataFixtures.h"
#include "tests/support/Golden.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Csv.h"
#include "tools/codec/JsonDocument.h"
#include "tools/codec/Ndjson.h"
#include "tools/codec/Script.h"

#include <cmath>
#include <sstream>

namespace vumo::test
{
namespace
{
/// Texts of the formats, read and written.
class CodecTest : public DataTest
{
protected:
    /// What is wrong with the text; empty when it can be read.
    std::string refusal(const std::string& format, const std::string& text) const
    {
        std::istringstream in(text);
        std::vector<std::string> words;
        try
        {
            if (format == "json")
                codec::readJson(in);
            else if (format == "ndjson")
                codec::readNdjson(in);
            else if (format == "csv")
                codec::readCsv(in, *mOdd, "odd");
            else if (format == "script")
                codec::ScriptReader(in).next(words);
            else
                readElement(format, text);
        }
        catch (const codec::CodecError& error)
        {
            return error.what();
        }
        return "";
    }

private:
    /// Reads an element of a stream of that index type, which stands on line 4.
    static void readElement(const std::string& indexType, const std::string& indexAndValues)
    {
        const std::string start = R"({"node": "N", "channel": "c", "stream": "s", )";
        const std::string members = R"([{"name": "i", "type": "int8"}, {"name": "f", "type": "float", "length": 2}, )"
                                    R"({"name": "b", "type": "bool"}, {"name": "s", "type": "string"}])";
        std::string element = indexAndValues;
        element.replace(element.find(' '), 1, ", \"values\": ");
        std::istringstream in(std::string("\n") + R"({"structure": "Odd", "members": )" + members + "}\n" + start +
                              R"("structure": "Odd", "indexType": ")" + indexType + "\"}\n" + start + R"("index": )" +
                              element + "}");
        try
        {
            codec::readNdjson(in);
        }
        catch (const codec::CodecError& error)
        {
            const std::string message = error.what(); // "line 4: ..."
            throw codec::CodecError(message.substr(message.find(' ', message.find(' ') + 1) + 1));
        }
    }

    const Ref<Structure> mOdd = Structure::make(
        "Odd",
        {{Member::kInt8, 1, "i"}, {Member::kFloat, 2, "f"}, {Member::kBoolean, 1, "b"}, {Member::kString, 1, "s"}});
};

TEST_F(CodecTest, Refusals_SayWhatAndWhere)
{
    std::istringstream cases(goldenText("codec_refusals.script"));
    codec::ScriptReader reader(cases);
    for (std::vector<std::string> words; reader.next(words);)
    {
        ASSERT_EQ(words.size(), 3U) << reader.line();
        EXPECT_EQ(refusal(words[0], words[1]), words[2]) << "line " << reader.line();
    }
}

TEST_F(CodecTest, GoldenTexts_AreReadAndWrittenAlike)
{
    std::istringstream json(goldenText("codec.json"));
    const codec::Metadata metadata = codec::readJson(json);
    std::ostringstream out;
    codec::writeJson(metadata, out);
    EXPECT_EQ(out.str(), goldenText("codec.json"));
    out.str("");
    codec::writeNdjson(metadata, out);
    EXPECT_EQ(out.str(), goldenText("codec.ndjson"));
    const Stream& stream = *metadata.nodes.at("Body").findChannel("face")->findDataStream("Group Ids");
    out.str("");
    codec::writeCsv(stream, out);
    EXPECT_EQ(out.str(), goldenText("codec.csv"));
    EXPECT_EQ(textOf(stream.element(Data::IndexPair(1, 10)), "Weight"), "-0");
    EXPECT_EQ(textOf(stream.element(Data::IndexPair(1, 10)), "Label"), "\xFF");
}

TEST_F(CodecTest, Scripts_AreSplitAsAShellDoes)
{
    std::istringstream script(goldenText("codec.script"));
    codec::ScriptReader reader(script);
    int commands = 0;
    for (std::vector<std::string> words, same; reader.next(words) && reader.next(same); ++commands)
        EXPECT_EQ(words, same) << "line " << reader.line();
    EXPECT_EQ(commands, 3);
}

TEST_F(CodecTest, Writers_RefuseWhatNoFileHolds)
{
    const Ref<Structure> number = Structure::make("Number", {{Member::kDouble, 1, "x"}});
    codec::Metadata metadata;
    Stream& stream = metadata.nodes["N"].edit("c", "s");
    stream.setStructure(*number);
    stream.setIndexType("string");
    const auto refusalOf = [&](const Index& index, double value) {
        Handle element(*number);
        element.set(0, value);
        stream.clear();
        stream.setElement(index, element);
        std::ostringstream out;
        return thrownBy([&] { codec::writeJson(metadata, out); }) + "\n" +
               thrownBy([&] { codec::writeCsv(stream, out); });
    };
    EXPECT_EQ(
        refusalOf(Data::IndexString("i"), std::nan("")),
        "runtime_error: node \"N\": channel \"c\": stream \"s\": the value nan is not finite, and cannot be stored\n"
        "runtime_error: the value nan is not finite, and cannot be stored");
    EXPECT_EQ(refusalOf(7, 1),
              "runtime_error: node \"N\": channel \"c\": stream \"s\": the index \"7\" is not of type \"string\"\n"
              "runtime_error: the index \"7\" is not of type \"string\"");
}
} // namespace
} // namespace vumo::test
