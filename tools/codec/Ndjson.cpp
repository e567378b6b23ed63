#include "tools/codec/Ndjson.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/JsonElements.h"

#include <istream>
#include <ostream>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
void writeStream(const Stream& stream, const std::string& path, std::ostream& out)
{
    const std::string start = path + ", \"stream\": " + jsonText(stream.name()) + ", ";
    out << start << "\"structure\": " << jsonText(stream.structure().name())
        << ", \"indexType\": " << jsonText(stream.indexType()) << "}\n";
    const StreamIterator end = stream.cend();
    for (StreamIterator element = stream.cbegin(); element != end; ++element)
        out << start << elementJson(stream, element.index(), *element) << "}\n";
}

void writeNode(const std::string& node, const Associations& associations, std::ostream& out)
{
    for (const Channel& channel : associations)
    {
        const std::string path = "{\"node\": " + jsonText(node) + ", \"channel\": " + jsonText(channel.name());
        for (const Stream* const stream : channel)
            at([&] { return path + ", \"stream\": " + jsonText(stream->name()) + "}"; },
               [&] { writeStream(*stream, path, out); });
    }
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

void readLine(const JsonValue& line, Metadata& metadata)
{
    if (line.find("members"))
    {
        metadata.addNewStructure(structureFrom(line));
        return;
    }
    if (line.kind != JsonValue::kObject)
        throw CodecError("an object is expected");
    Channel channel = metadata.nodes[textAt(line, "node")].channel(textAt(line, "channel"));
    if (line.find("index"))
        readElement(line, channel);
    else
        readStream(line, metadata, channel);
}
} // namespace

void writeNdjson(Metadata metadata, std::ostream& out)
{
    metadata.addUsedStructures();
    for (const auto& structure : metadata.structures)
        out << structureJson(*structure.second) << "\n";
    for (const auto& node : metadata.nodes)
        writeNode(node.first, node.second, out);
}

Metadata readNdjson(std::istream& in)
{
    Metadata metadata;
    std::string line;
    for (unsigned long long number = 1; std::getline(in, line); ++number)
    {
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            at([&] { return "line " + std::to_string(number); }, [&] { readLine(parseJson(line), metadata); });
    }
    return metadata;
}
} // namespace vumo::codec
