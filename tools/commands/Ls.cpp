#include "commands/Commands.h"
#include "core/Lines.h"
#include "core/SceneFile.h"
#include "core/Text.h"

using namespace vumo::Data;

namespace
{
eExitCode ls(Job& job)
{
    const Selection& selection = job.session.selection();
    const SceneFile scene(job.session, job.file);
    Lines lines(job);
    lines.addTitles({"node", "channel", "stream", "structure", "index", "elements", "bytes"});
    for (const ListedBlock& block : scene.list())
    {
        if (!Selection::passes(selection.nodes, block.name))
            continue;
        for (const ListedBlock::Channel& channel : block.channels)
        {
            if (!Selection::passes(selection.channels, channel.name))
                continue;
            for (const ListedBlock::Stream& stream : channel.streams)
            {
                if (!Selection::passes(selection.streams, stream.name))
                    continue;
                lines.add({escaped(block.name), escaped(channel.name), escaped(stream.name), escaped(stream.structure),
                           escaped(stream.indexType), std::to_string(stream.elements), std::to_string(stream.bytes)});
            }
        }
    }
    return kDone;
}
} // namespace

void addLs(Session& session)
{
    CLI::App& command = session.addCommand("ls", "List the streams of scenes, a line each, without reading values");
    session.addFiles(command);
    session.addSelection(command);
    session.setWork(command, [&session] { return forEachFile(session, ls); });
}
