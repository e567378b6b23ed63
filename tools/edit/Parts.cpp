#include "edit/Parts.h"

#include "core/Nearest.h"
#include "core/Text.h"
#include "vumo/accessor/AccessorOvri.h"
#include "vumo/foundation/Ref.h"

#include <map>
#include <vector>

using namespace vumo::Data;

namespace
{
/// The structure of that name in the file; null when there is none.
const Structure* structureByName(const SceneFile& scene, const std::string& name)
{
    for (const Structure* const structure : scene.metadata().structures())
    {
        if (structure->name() == name)
            return structure;
    }
    return nullptr;
}

/// Puts the stream under another name without renaming those that share its elements.
Stream named(const Stream& stream, const std::string& name)
{
    if (stream.name() == name)
        return stream;
    Stream copy = stream;
    copy.makeUnique();
    Channel channel;
    channel.setDataStream(copy);
    channel.renameDataStream(stream.name(), name);
    return *channel.findDataStream(name);
}
} // namespace

const Structure& knownStructure(const SceneFile& scene, const std::string& name)
{
    if (const Structure* const known = structureByName(scene, name))
        return *known;
    std::vector<std::string> names;
    for (const Structure* const structure : scene.metadata().structures())
        names.emplace_back(structure->name());
    throw scene.failure(kNo, "there is no structure " + inQuotes(name) + didYouMean(name, names));
}

const Structure& structureToUse(SceneFile& scene, const std::string& text)
{
    if (text.find('=') == std::string::npos) // that no name has
        return knownStructure(scene, text);
    std::string errors;
    const vumo::Ref<const Structure> structure(AccessorOvri::deserializeStructure("raw", text, errors));
    if (!structure)
        throw Failure(kWrongUsage, "--structure " + inQuotes(text) + ": " + errors);
    return addStructure(scene, *structure);
}

const Structure& addStructure(SceneFile& scene, const Structure& structure)
{
    if (const Structure* const known = structureByName(scene, structure.name()))
    {
        if (*known != structure)
            throw scene.failure(kNotWritten, "structure " + inQuotes(structure.name()) + " has other members there");
        return *known;
    }
    Accessor::StructureSet structures = scene.metadata().structures();
    structures.insert(&structure);
    scene.metadata().setStructures(structures);
    return structure;
}

Associations& nodeToEdit(SceneFile& scene, const std::string& name)
{
    std::map<std::string, Associations>& nodes = scene.metadata().associations();
    const auto entry = nodes.find(name);
    if (entry != nodes.end())
        return entry->second;
    for (const UnreadBlock& block : scene.metadata().unread())
    {
        if (block.kind == UnreadBlock::kAssociations && block.name == name)
            scene.node(name); // says why it cannot be read, and must not be replaced
    }
    return nodes[name];
}

bool putStream(const SceneFile& scene, const Stream& stream, const std::string& name, Channel channel,
               Edit::eMerge merge)
{
    if (channel.findDataStream(name) && !mayReplace(scene, merge, "stream " + inQuotes(name)))
        return false;
    channel.setDataStream(named(stream, name));
    return true;
}

Stream& streamToEdit(SceneFile& scene, const Address& address)
{
    scene.stream(address); // says what is missing
    return scene.metadata().associations()[address.node].edit(*address.channel, *address.stream);
}

bool mayReplace(const SceneFile& scene, Edit::eMerge merge, const std::string& what)
{
    if (merge == Edit::kFail)
        throw scene.failure(kNotWritten, what + " is there already; --merge says whether to keep or to replace it");
    return merge == Edit::kReplace;
}
