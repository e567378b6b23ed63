#include "tools/codec/Ndjson.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/JsonElements.h"

#include <cstdint>
#include <istream>
#include <ostream>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
/// What counts the lines stands on a line of its own.
constexpr const char* kCountKey = "lines";

/// Writes a line for the stream and one for each element; returns how many these are.
std::uint64_t writeStream(const Stream& stream, const std::string& path, std::ostream& out)
{
    const std::string start = path + ", \"stream\": " + jsonText(stream.name()) + ", ";
    out << start << "\"structure\": " << jsonText(stream.structure().name())
        << ", \"indexType\": " << jsonText(stream.indexType()) << "}\n";
    std::uint64_t lines = 1;
    const StreamIterator end = stream.cend();
    for (StreamIterator element = stream.cbegin(); element != end; ++element, ++lines)
        out << start << elementJson(stream, element.index(), *element) << "}\n";
    return lines;
}

std::uint64_t writeNode(const std::string& node, const Associations& associations, std::ostream& out)
{
    std::uint64_t lines = 0;
    for (const Channel& channel : associations)
    {
        const std::string path = "{\"node\": " + jsonText(node) + ", \"channel\": " + jsonText(channel.name());
        for (const Stream* const stream : channel)
            at([&] { return path + ", \"stream\": " + jsonText(stream->name()) + "}"; },
               [&] { lines += writeStream(*stream, path, out); });
    }
    return lines;
}

void readStream(const JsonValue& line, Metadata& metadata, Channel& channel)
{
    checkKeys(line, {"node", "channel", "stream", "structure", "indexType"});
    const std::string name = textAt(line, "structure");
    const auto structure = metadata.structures.find(name);
    if (structure == metadata.structures.end())
        throw CodecError("there is no line before with structure " + jsonText(name));
    const Stream stream = streamFrom(line, *structure->second);
    if (channel.findDataStream(stream.name()))
        throw CodecError("the stream " + jsonText(stream.name()) + " comes twice");
    channel.setDataStream(stream);
}

void readElement(const JsonValue& line, Channel& channel)
{
    checkKeys(line, {"node", "channel", "stream", "index", "values"});
    const std::string name = textAt(line, "stream");
    Stream* const stream = channel.findDataStream(name);
    if (!stream)
        throw CodecError("there is no line before that says the structure of stream " + jsonText(name));
    addElement(line, *stream);
}

/// Takes lines until the one that counts them.
class LineReader
{
public:
    LineReader(eNdjsonLines lines, Metadata& metadata) : mLines(lines), mMetadata(metadata) {}

    void read(const JsonValue& line)
    {
        if (line.find(kCountKey))
            return readCount(line);
        if (mHasEnded)
            throw CodecError("a line comes after the one that counts them");
        ++mCount;
        if (line.find("members"))
        {
            mMetadata.addNewStructure(structureFrom(line));
            return;
        }
        if (line.kind != JsonValue::kObject)
            throw CodecError("an object is expected");
        Channel channel = mMetadata.nodes[textAt(line, "node")].channel(textAt(line, "channel"));
        if (line.find("index"))
            readElement(line, channel);
        else
            readStream(line, mMetadata, channel);
    }

    void finish() const
    {
        if (mLines == kUncounted && mCount == 0)
            throw CodecError("there are no lines");
        if (mLines == kCounted && !mHasEnded)
            throw CodecError("the last line, which counts the others, is missing: the text may have been cut; "
                             "--uncounted takes it all the same");
    }

private:
    void readCount(const JsonValue& line)
    {
        checkKeys(line, {kCountKey});
        if (mLines == kUncounted)
            return;
        const JsonValue& count = valueAt(line, kCountKey);
        if (mHasEnded || count.kind != JsonValue::kNumber || count.text != std::to_string(mCount))
            throw CodecError("the lines before this one are " + std::to_string(mCount) +
                             ", not as many as it says; --uncounted takes them");
        mHasEnded = true;
    }

    const eNdjsonLines mLines;
    Metadata& mMetadata;
    std::uint64_t mCount = 0;
    bool mHasEnded = false;
};
} // namespace

void writeNdjson(Metadata metadata, std::ostream& out)
{
    metadata.addUsedStructures();
    std::uint64_t lines = metadata.structures.size();
    for (const auto& structure : metadata.structures)
        out << structureJson(*structure.second) << "\n";
    for (const auto& node : metadata.nodes)
        lines += writeNode(node.first, node.second, out);
    out << "{\"" << kCountKey << "\": " << lines << "}\n";
}

Metadata readNdjson(std::istream& in, eNdjsonLines lines)
{
    Metadata metadata;
    LineReader reader(lines, metadata);
    std::string line;
    for (unsigned long long number = 1; std::getline(in, line); ++number)
    {
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            at([&] { return "line " + std::to_string(number); }, [&] { reader.read(parseJson(line)); });
    }
    reader.finish();
    return metadata;
}
} // namespace vumo::codec
