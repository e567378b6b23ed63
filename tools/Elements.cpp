#include "Elements.h"

#include "Text.h"

using namespace vumo::Data;

Index indexFrom(const SceneFile& scene, const Stream& stream, const std::string& text)
{
    try
    {
        return Index::doCreate(stream.indexType(), text);
    }
    catch (Index::eCreationErrors)
    {
        throw scene.failure(quoted(text) + " is not an index of type " + quoted(stream.indexType()));
    }
}

Handle elementAt(const SceneFile& scene, const Stream& stream, const std::string& text)
{
    const Index index = indexFrom(scene, stream, text);
    if (!stream.hasElement(index))
        throw scene.failure("stream " + quoted(stream.name()) + " has no element at index " + quoted(text));
    return stream.element(index);
}

Table elementTable(const Stream& stream, eNumbers numbers)
{
    Table table;
    Table::Row titles = {"index"};
    for (const Member& member : stream.structure())
        titles.push_back(printable(Member::name(&member)));
    table.add(titles);

    const StreamIterator end = stream.cend();
    for (StreamIterator element = stream.cbegin(); element != end; ++element)
    {
        const std::string index = element.index().asString();
        Table::Row row = {stream.indexType() == "string" ? quoted(index) : printable(index)};
        for (unsigned int i = 0; element->setPositionByMemberIndex(i); ++i)
            row.push_back(memberText(*element, numbers));
        table.add(row);
    }
    return table;
}

Table memberTable(const Structure& structure, Handle element, eNumbers numbers)
{
    Table table;
    for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
        table.add({printable(Member::name(structure.member(i))), memberText(element, numbers)});
    return table;
}
