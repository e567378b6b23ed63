#include "edit/Selected.h"

#include "vumo/foundation/Ref.h"

using namespace vumo::Data;

namespace
{
bool passesAs(const std::optional<std::string>& exact, const std::vector<std::string>& patterns,
              const std::string& name)
{
    return (!exact || *exact == name) && Selection::passes(patterns, name);
}

Associations selectedChannels(const Associations& associations, const Selection& selection, const Address& exact)
{
    Associations result;
    for (const Channel& channel : associations)
    {
        if (!passesAs(exact.channel, selection.channels, channel.name()))
            continue;
        Channel copy(channel.name());
        for (const Stream* const stream : channel)
        {
            if (passesAs(exact.stream, selection.streams, stream->name()))
                copy.setDataStream(*stream);
        }
        result.setChannel(copy);
    }
    return result;
}
} // namespace

vumo::codec::Metadata selected(const SceneFile& scene, const Selection& selection, const Address* address)
{
    vumo::codec::Metadata metadata;
    for (const auto& [node, associations] : scene.metadata().associations())
    {
        if ((!address || address->node == node) && Selection::passes(selection.nodes, node))
            metadata.nodes[node] = selectedChannels(associations, selection, address ? *address : Address());
    }
    if (!address && selection.nodes.empty() && selection.channels.empty() && selection.streams.empty())
    {
        for (const Structure* const structure : scene.metadata().structures())
            metadata.addStructure(*structure);
    }
    metadata.addUsedStructures();
    return metadata;
}
