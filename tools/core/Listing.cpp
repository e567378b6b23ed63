#include "core/Listing.h"

#include "vumo/data/Associations.h"
#include "vumo/data/Channel.h"
#include "vumo/data/Stream.h"

using namespace vumo::Data;

namespace
{
ListedBlock::Channel listed(const Channel& channel)
{
    ListedBlock::Channel result;
    result.name = channel.name();
    for (const Stream* const stream : channel)
    {
        ListedBlock::Stream& added = result.streams.emplace_back();
        added.name = stream->name();
        added.structure = stream->structure().name();
        added.indexType = stream->indexType();
        added.elements = stream->elementCount();
    }
    return result;
}
} // namespace

std::vector<ListedBlock> listingOf(const Accessor& metadata)
{
    std::vector<ListedBlock> blocks;
    for (const Structure* const structure : metadata.structures())
        blocks.emplace_back().name = structure->name();
    for (const auto& [node, channels] : metadata.associations())
    {
        ListedBlock& block = blocks.emplace_back();
        block.kind = ListedBlock::kAssociations;
        block.name = node;
        for (const Channel& channel : channels)
            block.channels.push_back(listed(channel));
    }
    for (const UnreadBlock& unread : metadata.unread())
    {
        if (unread.kind != UnreadBlock::kAssociations)
            continue;
        ListedBlock& block = blocks.emplace_back();
        block.kind = ListedBlock::kAssociations;
        block.name = unread.name;
    }
    return blocks;
}
