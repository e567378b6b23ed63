#include "core/Unmatched.h"

#include "core/Nearest.h"
#include "core/Text.h"

#include <algorithm>
#include <set>
#include <string>

using namespace vumo::Data;

namespace
{
using Names = std::set<std::string>;

void tell(Session& session, const std::string& kind, const std::vector<std::string>& patterns, const Names& names)
{
    for (const std::string& pattern : patterns)
    {
        const auto fits = [&](const std::string& name) { return Selection::passes({pattern}, name); };
        if (std::none_of(names.begin(), names.end(), fits))
            session.say("no " + kind + " is like " + inQuotes(pattern) +
                        didYouMean(pattern, {names.begin(), names.end()}));
    }
}
} // namespace

void tellUnmatched(Session& session, const std::vector<ListedBlock>& blocks)
{
    const Selection& selection = session.selection();
    if (selection.isAll() || session.isBatch())
        return;
    Names nodes;
    Names channels; // of the nodes that fit
    Names streams;  // of the channels that fit
    for (const ListedBlock& block : blocks)
    {
        if (block.kind == ListedBlock::kAssociations)
            nodes.insert(block.name);
        for (const ListedBlock::Channel& channel : block.channels)
        {
            if (!Selection::passes(selection.nodes, block.name))
                continue;
            channels.insert(channel.name);
            for (const ListedBlock::Stream& stream : channel.streams)
            {
                if (Selection::passes(selection.channels, channel.name))
                    streams.insert(stream.name);
            }
        }
    }
    session.flushForPeople();
    tell(session, "node", selection.nodes, nodes);
    if (!channels.empty()) // else nothing is known of them, or the node is what is misspelt
        tell(session, "channel", selection.channels, channels);
    if (!streams.empty())
        tell(session, "stream", selection.streams, streams);
}
