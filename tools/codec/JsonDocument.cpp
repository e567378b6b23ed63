#include "tools/codec/JsonDocument.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/JsonElements.h"

#include <istream>
#include <iterator>
#include <ostream>
#include <sstream>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
constexpr const char* kVersion = "1";

/// Writes the items of an array, each on a line of its own.
class ArrayLines
{
public:
    ArrayLines(std::ostream& out, std::string indent) : mOut(out), mIndent(std::move(indent)) { mOut << "["; }

    std::ostream& next()
    {
        mOut << (mIsEmpty ? "\n  " : ",\n  ") << mIndent;
        mIsEmpty = false;
        return mOut;
    }

    void close() { mOut << (mIsEmpty ? "" : "\n" + mIndent) << "]"; }

private:
    std::ostream& mOut;
    std::string mIndent;
    bool mIsEmpty = true;
};

void writeStream(const Stream& stream, std::ostream& out)
{
    out << "{\"stream\": " << jsonText(stream.name()) << ", \"structure\": " << jsonText(stream.structure().name())
        << ", \"indexType\": " << jsonText(stream.indexType()) << ", \"elements\": ";
    ArrayLines elements(out, "        ");
    const StreamIterator end = stream.cend();
    for (StreamIterator element = stream.cbegin(); element != end; ++element)
        elements.next() << "{" << elementJson(stream, element.index(), *element) << "}";
    elements.close();
    out << "}";
}

void writeChannel(const Channel& channel, std::ostream& out)
{
    out << "{\"channel\": " << jsonText(channel.name()) << ", \"streams\": ";
    ArrayLines streams(out, "      ");
    for (const Stream* const stream : channel)
        at([&] { return "stream " + jsonText(stream->name()); }, [&] { writeStream(*stream, streams.next()); });
    streams.close();
    out << "}";
}

void writeNode(const std::string& name, const Associations& associations, std::ostream& out)
{
    out << "{\"node\": " << jsonText(name) << ", \"channels\": ";
    ArrayLines channels(out, "    ");
    for (const Channel& channel : associations)
    {
        if (!channel.empty())
            at([&] { return "channel " + jsonText(channel.name()); }, [&] { writeChannel(channel, channels.next()); });
    }
    channels.close();
    out << "}";
}

bool hasStreams(const Associations& associations)
{
    unsigned int count = 0;
    for (const Channel& channel : associations)
        count += channel.size();
    return count > 0;
}

/// Does something with each item of the array at the key.
template <class Action>
void forEachAt(const JsonValue& object, const std::string& key, const Action& action)
{
    const std::vector<JsonValue>& items =
        at([&] { return key; }, [&]() -> const std::vector<JsonValue>& { return itemsOf(valueAt(object, key)); });
    for (std::size_t i = 0; i < items.size(); ++i)
        at([&] { return key + "[" + std::to_string(i) + "]"; }, [&] { action(items[i]); });
}

void readStream(const JsonValue& value, const Metadata& metadata, Channel& channel)
{
    checkKeys(value, {"stream", "structure", "indexType", "elements"});
    const std::string structureName = textAt(value, "structure");
    const auto structure = metadata.structures.find(structureName);
    if (structure == metadata.structures.end())
        throw CodecError("there is no structure " + jsonText(structureName));
    Stream stream = streamFrom(value, *structure->second);
    if (channel.findDataStream(stream.name()))
        throw CodecError("the stream " + jsonText(stream.name()) + " comes twice");
    forEachAt(value, "elements", [&](const JsonValue& element) {
        checkKeys(element, {"index", "values"});
        addElement(element, stream);
    });
    channel.setDataStream(stream);
}

void readChannel(const JsonValue& value, const Metadata& metadata, Associations& associations)
{
    checkKeys(value, {"channel", "streams"});
    const std::string name = textAt(value, "channel");
    if (associations.findChannel(name))
        throw CodecError("the channel " + jsonText(name) + " comes twice");
    Channel channel = associations.channel(name);
    forEachAt(value, "streams", [&](const JsonValue& stream) { readStream(stream, metadata, channel); });
}

void readNode(const JsonValue& value, Metadata& metadata)
{
    checkKeys(value, {"node", "channels"});
    const std::string name = textAt(value, "node");
    const auto added = metadata.nodes.emplace(name, Associations());
    if (!added.second)
        throw CodecError("the node " + jsonText(name) + " comes twice");
    forEachAt(value, "channels",
              [&](const JsonValue& channel) { readChannel(channel, metadata, added.first->second); });
}
} // namespace

void writeJson(Metadata metadata, std::ostream& out)
{
    metadata.addUsedStructures();
    out << "{\n  \"vumo\": " << kVersion << ",\n  \"structures\": ";
    ArrayLines structures(out, "  ");
    for (const auto& structure : metadata.structures)
        structures.next() << structureJson(*structure.second);
    structures.close();
    out << ",\n  \"nodes\": ";
    ArrayLines nodes(out, "  ");
    for (const auto& node : metadata.nodes)
    {
        if (hasStreams(node.second))
            at([&] { return "node " + jsonText(node.first); },
               [&] { writeNode(node.first, node.second, nodes.next()); });
    }
    nodes.close();
    out << "\n}\n";
}

std::string jsonDocument(Metadata metadata)
{
    std::ostringstream out;
    writeJson(std::move(metadata), out);
    std::string text = out.str();
    text.pop_back();
    return text;
}

Metadata readJson(std::istream& in)
{
    const JsonValue document = parseJson({std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    checkKeys(document, {"vumo", "structures", "nodes"});
    if (valueAt(document, "vumo").text != kVersion)
        throw CodecError("this is not a document of version " + std::string(kVersion));
    Metadata metadata;
    forEachAt(document, "structures",
              [&](const JsonValue& structure) { metadata.addNewStructure(structureFrom(structure)); });
    forEachAt(document, "nodes", [&](const JsonValue& node) { readNode(node, metadata); });
    return metadata;
}
} // namespace vumo::codec
