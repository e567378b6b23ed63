#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Elements.h"
#include "core/Lines.h"
#include "core/Text.h"
#include "tools/codec/JsonElements.h"
#include "vumo/data/StreamIterator.h"

#include <vector>

using namespace vumo::Data;

namespace
{
/// The cells of an element, one for each member.
Table::Row cells(Handle element)
{
    Table::Row row;
    for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
        row.push_back(cellText(element, {0, element.dataLength()}));
    return row;
}

/// One value, or several of them separated by blanks; strings as they are, each with an end of its own.
void printValue(const Job& job, const Handle& element, const MemberPart& part)
{
    const bool isString = element.dataType() == Member::kString;
    for (unsigned int i = part.first; i < part.first + part.count; ++i)
    {
        const bool isLast = i + 1 == part.first + part.count;
        job.out << element.str(i, kExact) << (isString || isLast ? job.session.lineEnd() : ' ');
    }
}

void getElement(const Job& job, const SceneFile& scene, const Stream& stream, const Address& address)
{
    Handle element = elementAt(scene, stream, *address.index);
    if (!address.member)
    {
        if (job.json)
            job.json->add("element",
                          "{" + vumo::codec::elementJson(stream, indexFrom(scene, stream, *address.index), element) +
                              "}");
        else
            Lines(job).add(cells(element));
        return;
    }
    const MemberPart part = findMember(scene, stream, *address.member, element);
    if (job.json)
        job.json->add("value", valueJson(*stream.structure().member(element.memberIndex()), element, part));
    else
        printValue(job, element, part);
}

void getStream(const Job& job, const Stream& stream)
{
    std::vector<std::string> elements;
    Lines lines(job);
    Table::Row titles = {"index"};
    for (const Member& member : stream.structure())
        titles.push_back(escaped(Member::name(&member)));
    lines.addTitles(titles);
    for (StreamIterator element = stream.cbegin(); element != stream.cend(); ++element)
    {
        if (job.json)
        {
            elements.push_back("{" + vumo::codec::elementJson(stream, element.index(), *element) + "}");
            continue;
        }
        Table::Row row = cells(*element);
        row.insert(row.begin(), escaped(element.index().asString()));
        lines.add(row);
    }
    if (job.json)
        job.json->add("elements", jsonArray(elements));
}

eExitCode get(Job& job)
{
    const Address address = job.session.address();
    SceneFile scene(job.session, job.file);
    scene.readNode(address.node);
    const Stream& stream = scene.stream(address);
    if (address.index)
        getElement(job, scene, stream, address);
    else
        getStream(job, stream);
    return kDone;
}
} // namespace

void addGet(Session& session)
{
    Command command = session.addCommand("get", "Print a value, an element or a stream, and nothing else");
    session.addFileAndWords(command, Session::kAddress, 3);
    session.addJson(command);
    session.setWork(command, [&session] {
        session.setLineEnd(session.endsWithZero() ? '\0' : '\n');
        return forEachFile(session, get);
    });
}
