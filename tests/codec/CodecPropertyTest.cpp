#include "tests/support/DataFixtures.h"
#include "tests/support/RandomMetadata.h"
#include "tools/codec/Csv.h"
#include "tools/codec/JsonDocument.h"
#include "tools/codec/Ndjson.h"
#include "tools/codec/Script.h"
#include "vumo/data/Numbers.h"
#include "vumo/serialize/AssociationsSerializerRaw.h"
#include "vumo/serialize/StreamSerializerRaw.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <sstream>

namespace vumo::test
{
namespace
{
constexpr int kRounds = 300;

/// What the raw format writes, whatever it thinks of it.
template <class Format, class T>
std::string rawText(const Format& format, const T& object)
{
    std::ostringstream out;
    std::string errors;
    format.write(object, out << Data::exactNumbers, errors);
    return out.str();
}

std::string rawText(const codec::Metadata& metadata)
{
    std::string text;
    for (const auto& structure : metadata.structures)
    {
        std::ostringstream out;
        Data::StructureSerializerRaw::theFormat()->write(*structure.second, out);
        appendDelimited(text, out.str());
    }
    for (const auto& node : metadata.nodes)
    {
        appendDelimited(text, node.first);
        appendDelimited(text, rawText(*Data::AssociationsSerializerRaw::theFormat(), node.second));
    }
    return text;
}

using CodecPropertyTest = DataTest;

TEST_F(CodecPropertyTest, Documents_GiveBackAnyMetadata)
{
    RandomMetadata random;
    SCOPED_TRACE(random.seedText());
    for (int round = 0; round < kRounds; ++round)
    {
        codec::Metadata metadata;
        metadata.nodes = random.nodes();
        metadata.addUsedStructures();
        std::stringstream json;
        std::stringstream lines;
        codec::writeJson(metadata, json);
        codec::writeNdjson(metadata, lines);
        const codec::Metadata fromJson = codec::readJson(json);
        const codec::Metadata fromLines = codec::readNdjson(lines);
        ASSERT_EQ(rawText(fromJson), rawText(metadata)) << json.str();
        ASSERT_EQ(rawText(fromLines), rawText(metadata)) << lines.str();
        std::ostringstream again;
        codec::writeJson(fromLines, again);
        ASSERT_EQ(again.str(), json.str());
        again.str("");
        codec::writeNdjson(fromJson, again);
        ASSERT_EQ(again.str(), lines.str());
    }
}

TEST_F(CodecPropertyTest, Csv_GivesBackAnyStream)
{
    RandomMetadata random;
    SCOPED_TRACE(random.seedText());
    for (int round = 0; round < kRounds; ++round)
    {
        const Ref<Structure> structure = random.structure();
        const Stream stream = random.stream(*structure);
        std::stringstream csv;
        codec::writeCsv(stream, csv);
        const Stream read = codec::readCsv(csv, *structure, stream.name());
        const auto& format = *Data::StreamSerializerRaw::theFormat();
        ASSERT_EQ(rawText(format, read), rawText(format, stream)) << csv.str();
        std::ostringstream again;
        codec::writeCsv(read, again);
        ASSERT_EQ(again.str(), csv.str());
    }
}

TEST_F(CodecPropertyTest, Script_GivesBackAnyWords)
{
    Random random;
    SCOPED_TRACE(random.seedText());
    std::string script;
    std::vector<std::vector<std::string>> lines(kRounds);
    for (std::vector<std::string>& words : lines)
    {
        words.resize(1 + random.below(3));
        for (std::string& word : words)
            script += codec::scriptWord(word = randomValue(random)) + " ";
        script += "# a comment 'of \"one\" line\n \n";
    }
    std::istringstream in(script);
    codec::ScriptReader reader(in);
    std::vector<std::string> words;
    for (const std::vector<std::string>& expected : lines)
    {
        ASSERT_TRUE(reader.next(words));
        ASSERT_EQ(words, expected) << script;
    }
    EXPECT_FALSE(reader.next(words));
}
} // namespace
} // namespace vumo::test
