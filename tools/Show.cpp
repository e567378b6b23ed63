#include "Commands.h"
#include "Elements.h"
#include "SceneFile.h"
#include "Text.h"
#include "vumo/data/Associations.h"

#include <iostream>

using namespace vumo::Data;

namespace
{
void showStructures(const Accessor::StructureSet& structures)
{
    std::cout << "structures\n";
    for (const Structure* const structure : structures)
    {
        std::cout << "  " << quoted(structure->name()) << "\n";
        Table members;
        for (const Member& member : *structure)
        {
            std::string type = Member::typeName(Member::type(&member));
            if (Member::length(&member) != 1)
                type += "[" + std::to_string(Member::length(&member)) + "]";
            members.add({type, printable(Member::name(&member))});
        }
        members.print(std::cout, 4);
    }
}

Table::Row streamRow(const Stream& stream)
{
    const unsigned int count = stream.elementCount();
    return {"stream " + quoted(stream.name()), "structure " + quoted(stream.structure().name()),
            "index " + printable(stream.indexType()), std::to_string(count) + (count == 1 ? " element" : " elements")};
}

void showChannel(const Channel& channel, bool withValues, eNumbers numbers)
{
    std::cout << "  channel " << quoted(channel.name()) << "\n";
    Table streams;
    for (const Stream* const stream : channel)
    {
        streams.add(streamRow(*stream));
        if (!withValues)
            continue;
        streams.print(std::cout, 4);
        streams = Table();
        elementTable(*stream, numbers).print(std::cout, 6);
    }
    streams.print(std::cout, 4);
}
} // namespace

void show(const std::string& fileName, bool withValues, eNumbers numbers)
{
    const SceneFile scene(fileName, SceneFile::kLook);
    if (scene.isEmpty())
    {
        std::cout << SceneFile::kNoMetadata << "\n";
        return;
    }
    showStructures(scene.metadata().structures());
    for (const auto& entry : scene.metadata().associations())
    {
        std::cout << nodeTitle(entry.first) << "\n";
        for (const Channel& channel : entry.second)
            showChannel(channel, withValues, numbers);
    }
    for (const UnreadBlock& block : scene.metadata().unread())
        std::cout << SceneFile::unreadableText(block);
}
