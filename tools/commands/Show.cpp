#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Elements.h"
#include "core/Listing.h"
#include "core/Table.h"
#include "core/Text.h"
#include "core/Unmatched.h"
#include "core/Unreadable.h"
#include "edit/Script.h"
#include "edit/Selected.h"
#include "tools/codec/JsonDocument.h"
#include "vumo/data/Channel.h"
#include "vumo/data/StreamIterator.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <ostream>

using namespace vumo::Data;

namespace
{
constexpr unsigned int kShownElements = 20; // about what a terminal shows

/// How much is shown of each stream, and in which form.
struct Head
{
    std::string form = "table";
    unsigned int count = kShownElements;
    bool isAll = false;
};

void showStructures(std::ostream& out, const Accessor::StructureSet& structures)
{
    out << "structures\n";
    for (const Structure* const structure : structures)
    {
        out << "  " << inQuotes(structure->name()) << "\n";
        Table members;
        for (const Member& member : *structure)
        {
            std::string type = Member::typeName(Member::type(&member));
            if (Member::length(&member) != 1)
                type += "[" + std::to_string(Member::length(&member)) + "]";
            members.add({type, printable(Member::name(&member))});
        }
        members.print(out, 4);
    }
}

Table::Row streamRow(const Stream& stream)
{
    const unsigned int count = stream.elementCount();
    return {"stream " + inQuotes(stream.name()), "structure " + inQuotes(stream.structure().name()),
            "index " + printable(stream.indexType()), std::to_string(count) + (count == 1 ? " element" : " elements")};
}

/// The first elements, a row each: the index, then the values of each member, under a row of titles.
Table elementTable(const Stream& stream, unsigned int count)
{
    Table table;
    Table::Row titles = {"index"};
    for (const Member& member : stream.structure())
        titles.push_back(printable(Member::name(&member)));
    table.add(titles);

    StreamIterator element = stream.cbegin();
    for (unsigned int shown = 0; shown < count; ++shown, ++element)
    {
        const std::string index = element.index().asString();
        Table::Row row = {stream.indexType() == "string" ? inQuotes(index) : printable(index)};
        for (unsigned int i = 0; element->setPositionByMemberIndex(i); ++i)
            row.push_back(memberText(*element));
        table.add(row);
    }
    return table;
}

void showStream(std::ostream& out, const Stream& stream, const Head& head)
{
    Table title;
    title.add(streamRow(stream));
    title.print(out, 4);
    const unsigned int all = stream.elementCount();
    const unsigned int count = head.isAll ? all : std::min(head.count, all);
    if (count > 0)
        elementTable(stream, count).print(out, 6);
    if (count < all)
        out << "      and " << all - count << " more; --all shows them\n";
}

eExitCode show(Job& job, const Head& head)
{
    const Selection& selection = job.session.selection();
    SceneFile scene(job.session, job.file);
    scene.readSelected(selection.nodes);
    tellUnmatched(job.session, listingOf(scene.metadata()));
    if (head.form == "script")
    {
        printScript(job, scene);
        return scene.tellUnreadable(job.session);
    }
    if (job.json)
    {
        job.json->add("metadata", vumo::codec::jsonDocument(selected(scene, selection)));
        addUnreadable(job, scene);
        return kDone;
    }
    if (scene.isEmpty())
    {
        job.session.say(job.file + ": " + SceneFile::kNoMetadata);
        return kDone;
    }
    showStructures(job.out, scene.metadata().structures());
    for (const auto& [node, channels] : scene.metadata().associations())
    {
        job.out << nodeTitle(node) << "\n";
        for (const Channel& channel : channels)
        {
            if (!Selection::passes(selection.channels, channel.name()))
                continue;
            job.out << "  channel " << inQuotes(channel.name()) << "\n";
            for (const Stream* const stream : channel)
            {
                if (Selection::passes(selection.streams, stream->name()))
                    showStream(job.out, *stream, head);
            }
        }
    }
    for (const UnreadBlock& block : scene.metadata().unread())
    {
        if (!block.why.empty())
            job.out << SceneFile::unreadableText(block);
    }
    return kDone;
}
} // namespace

void addShow(Session& session)
{
    Command command = session.addCommand("show", "Show what scenes hold, in aligned columns");
    session.addSelectedFiles(command);
    const auto head = std::make_shared<Head>();
    command.addFlag("--all", head->isAll, "show all elements of each stream, not only the first 20");
    command.addNumber("--head", head->count, 0, std::numeric_limits<unsigned int>::max(), "N", "show so many");
    command.addChoice("--as", head->form, {"table", "script"},
                      "print tables, or a script that makes all that is shown anew, for apply");
    session.addJson(command);
    session.setWork(command, [&session, head] {
        if (session.isJson() && head->form == "script")
            throw Failure(kWrongUsage, "--as script and --json are two forms of one thing; choose one");
        return forEachFile(session, [&head](Job& job) { return show(job, *head); });
    });
}
