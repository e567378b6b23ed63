#include "edit/UnusedStructures.h"

#include "core/Text.h"
#include "edit/Parts.h"

#include <map>

using namespace vumo::Data;

namespace
{
/// A stream for each structure that one uses, for messages. By the structure's name.
std::map<std::string, std::string> usersIn(const SceneFile& scene)
{
    const auto& nodes = scene.metadata().associations();
    for (const UnreadBlock& block : scene.metadata().unread())
    {
        if (block.kind == UnreadBlock::kAssociations && nodes.count(block.name) == 0)
            throw scene.failure(kNotWritten, "all structures stay, as " + nodeTitle(block.name) +
                                                 " may use any of them, and cannot be read");
    }
    std::map<std::string, std::string> users;
    for (const auto& [node, channels] : nodes)
    {
        for (const Channel& channel : channels)
        {
            for (const Stream* const stream : channel)
                users[stream->structure().name()] = "stream " + inQuotes(stream->name()) + " in channel " +
                                                    inQuotes(channel.name()) + " of " + nodeTitle(node);
        }
    }
    return users;
}
} // namespace

void removeStructures(SceneFile& scene, const std::vector<std::string>& names)
{
    const std::map<std::string, std::string> users = usersIn(scene);
    Accessor::StructureSet structures = scene.metadata().structures();
    for (const std::string& name : names)
    {
        const Structure& structure = knownStructure(scene, name);
        const auto user = users.find(name);
        if (user != users.end())
            throw scene.failure(kNotWritten, "structure " + inQuotes(name) + " is used by " + user->second);
        structures.erase(&structure);
    }
    scene.metadata().setStructures(structures);
}

void removeUnusedStructures(SceneFile& scene)
{
    const std::map<std::string, std::string> users = usersIn(scene);
    Accessor::StructureSet structures;
    for (const Structure* const structure : scene.metadata().structures())
    {
        if (users.count(structure->name()) > 0)
            structures.insert(structure);
    }
    scene.metadata().setStructures(structures);
}
