#include "commands/Commands.h"
#include "core/Rows.h"
#include "core/SceneFile.h"
#include "core/Text.h"
#include "core/Unmatched.h"
#include "core/Unreadable.h"

#include <algorithm>
#include <map>
#include <memory>

using namespace vumo::Data;

namespace
{
struct LsOptions
{
    bool nodes = false;
    bool structures = false;
    bool isLong = false;
};

/// The layouts of the structures that can be read, by their names.
using Layouts = std::map<std::string, std::string>;

/// How many bytes, where something is known of the text that the block stands in.
Rows::Cell bytesIn(const ListedBlock& block, std::uint64_t bytes)
{
    return block.format.empty() ? Rows::Cell() : bytes;
}

Layouts layoutsOf(const SceneFile& scene)
{
    Layouts layouts;
    for (const Structure* const structure : scene.metadata().structures())
        layouts[structure->name()] = layoutText(*structure);
    return layouts;
}

void listStructures(const Job& job, const std::vector<ListedBlock>& blocks, bool isLong, const Layouts& layouts)
{
    std::vector<std::string> columns = {"structure"};
    if (isLong)
        columns.emplace_back("layout");
    Rows rows(job, "structures", columns);
    for (const ListedBlock& block : blocks)
    {
        if (block.kind != ListedBlock::kStructure)
            continue;
        std::vector<Rows::Cell> cells = {block.name};
        const auto layout = layouts.find(block.name);
        if (isLong)
            cells.emplace_back(layout == layouts.end() ? "" : layout->second);
        rows.add(cells);
    }
}

void listNodes(const Job& job, const std::vector<ListedBlock>& blocks)
{
    Rows rows(job, "nodes", {"node", "channels", "streams", "elements", "bytes"});
    for (const ListedBlock& block : blocks)
    {
        std::uint64_t streams = 0;
        std::uint64_t elements = 0;
        for (const ListedBlock::Channel& channel : block.channels)
        {
            streams += channel.streams.size();
            for (const ListedBlock::Stream& stream : channel.streams)
                elements += stream.elements;
        }
        if (block.kind == ListedBlock::kAssociations && Selection::passes(job.session.selection().nodes, block.name))
            rows.add({block.name, block.channels.size(), streams, elements, bytesIn(block, block.length)});
    }
}

void listStreams(const Job& job, const std::vector<ListedBlock>& blocks, bool isLong, const Layouts& layouts)
{
    const Selection& selection = job.session.selection();
    std::vector<std::string> columns = {"node", "channel", "stream", "structure", "indexType", "elements", "bytes"};
    if (isLong)
        columns.emplace_back("layout");
    Rows rows(job, "streams", columns);
    const auto addStream = [&](const ListedBlock& node, const std::string& channel, const ListedBlock::Stream& stream) {
        std::vector<Rows::Cell> cells = {node.name,
                                         channel,
                                         stream.name,
                                         stream.structure,
                                         stream.indexType,
                                         stream.elements,
                                         bytesIn(node, stream.bytes)};
        const auto layout = layouts.find(stream.structure);
        if (isLong)
            cells.emplace_back(layout == layouts.end() ? "" : layout->second);
        rows.add(cells);
    };
    for (const ListedBlock& block : blocks)
    {
        for (const ListedBlock::Channel& channel : block.channels)
        {
            for (const ListedBlock::Stream& stream : channel.streams)
            {
                if (selection.passes(block.name, channel.name, stream.name))
                    addStream(block, channel.name, stream);
            }
        }
    }
}

/// Says which nodes nothing is known of but where they stand.
void tellClosed(const Job& job, const SceneFile& scene, const std::vector<ListedBlock>& blocks)
{
    const Selection& selection = job.session.selection();
    for (const ListedBlock& block : blocks)
    {
        if (block.kind == ListedBlock::kStructure || block.format == "raw" || block.format.empty() ||
            !Selection::passes(selection.nodes, block.name))
            continue;
        job.session.flushForPeople();
        job.session.say(scene
                            .failure(kDone, nodeTitle(block.name) + " is in the format " + inQuotes(block.format) +
                                                ", in which ls cannot look; show tells what it can")
                            .what());
    }
}

eExitCode ls(Job& job, const LsOptions& options)
{
    SceneFile scene(job.session, job.file);
    if (options.isLong)
        scene.read();
    SceneFile listing(job.session, job.file);
    const std::vector<ListedBlock>& blocks = listing.list();
    const Layouts layouts = options.isLong ? layoutsOf(scene) : Layouts();
    if (options.structures)
        listStructures(job, blocks, options.isLong, layouts);
    else if (options.nodes)
        listNodes(job, blocks);
    else
        listStreams(job, blocks, options.isLong, layouts);
    tellUnmatched(job.session, blocks);
    if (options.isLong)
        addUnreadable(job, scene);
    else if (!options.structures)
        tellClosed(job, scene, blocks);
    return kDone;
}
} // namespace

void addLs(Session& session)
{
    Command command = session.addCommand("ls", "List the streams of scenes, a line each, without reading values");
    session.addSelectedFiles(command);
    const auto options = std::make_shared<LsOptions>();
    command.addFlag("--nodes", options->nodes, "list the nodes in place of the streams");
    command.addFlag("--structures", options->structures, "list the structures", "--nodes");
    command.addFlag("-l,--long", options->isLong, "layouts, too, and what cannot be read with the reason; reads all");
    session.addJson(command);
    session.setWork(command, [&session, options] {
        return forEachFile(session, [options](Job& job) { return ls(job, *options); });
    });
}
