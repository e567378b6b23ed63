#include "edit/Edit.h"

#include "core/Elements.h"
#include "core/Text.h"
#include "edit/Assignment.h"
#include "edit/Parts.h"
#include "edit/Transfer.h"
#include "edit/UnusedStructures.h"

#include <algorithm>

using namespace vumo::Data;

namespace
{
constexpr std::size_t kWordsOfElement = 4;

void addStream(const Edit& edit, SceneFile& scene, Channel& channel, const std::string& name)
{
    if (edit.structure.empty())
        throw scene.failure(kNo, "there is no stream " + inQuotes(name) + "; --structure says what a new one is of");
    Stream stream(structureToUse(scene, edit.structure), name);
    if (!edit.indexType.empty() && Index::creators().count(edit.indexType) == 0)
        throw scene.failure(kNo, "there is no index type " + inQuotes(edit.indexType));
    if (!edit.indexType.empty())
        stream.setIndexType(edit.indexType);
    channel.setDataStream(stream);
}

/// Adds what the address names and is missing, but for the element.
void addPath(const Edit& edit, SceneFile& scene)
{
    const Address address = edit.from();
    if (edit.words.empty())
    {
        structureToUse(scene, edit.structure);
        return;
    }
    Channel channel = nodeToEdit(scene, address.node).channel(*address.channel);
    if (!channel.findDataStream(*address.stream))
        addStream(edit, scene, channel, *address.stream);
}

void applySet(const Edit& edit, SceneFile& scene)
{
    if (edit.add)
        addPath(edit, scene);
    const Address address = edit.from();
    if (!address.index)
        return;
    Stream& stream = streamToEdit(scene, address);
    const Index index = indexFrom(scene, stream, *address.index);
    if (edit.add && !stream.hasElement(index))
        stream.setElement(index, Handle(stream.structure()));
    Handle element = elementAt(scene, stream, *address.index, "; --add makes one");
    for (std::size_t i = kWordsOfElement; i < edit.words.size(); ++i)
        assign(scene, stream, edit.words[i], element);
}

/// Removes a node, also one that was not read or cannot be.
void removeNode(SceneFile& scene, const std::string& name)
{
    const std::vector<UnreadBlock> unread = scene.metadata().unread();
    const bool isUnread = std::any_of(unread.begin(), unread.end(), [&](const UnreadBlock& block) {
        return block.kind == UnreadBlock::kAssociations && block.name == name;
    });
    if (!isUnread)
        scene.node(name);                                   // says that it is missing
    scene.metadata().associations()[name] = Associations(); // without an entry, what was not read would stay
}

void removeAt(const Address& address, SceneFile& scene)
{
    if (!address.channel)
        return removeNode(scene, address.node);
    Channel& channel = scene.channel(address);
    if (address.index)
    {
        const Stream& stream = scene.stream(address);
        elementAt(scene, stream, *address.index); // says that it is missing
        const Index index = indexFrom(scene, stream, *address.index);
        streamToEdit(scene, address).removeElement(index);
    }
    else if (address.stream)
    {
        scene.stream(address);
        channel.removeDataStream(*address.stream);
    }
    else
    {
        scene.node(address.node).removeChannel(*address.channel);
    }
}

void applyRemove(const Edit& edit, SceneFile& scene)
{
    if (!edit.words.empty())
        removeAt(edit.from(), scene);
    if (!edit.structures.empty())
        removeStructures(scene, edit.structures);
    if (edit.allUnused)
        removeUnusedStructures(scene);
}

[[noreturn]] void refuse(const std::string& text)
{
    throw Failure(kWrongUsage, text);
}

void checkSet(const Edit& edit)
{
    const std::size_t count = edit.words.size();
    if (!edit.add && (!edit.structure.empty() || !edit.indexType.empty()))
        refuse("--structure and --index-type are about what --add makes");
    if (!edit.add && count <= kWordsOfElement)
        refuse("set needs NODE CHANNEL STREAM INDEX MEMBER=VALUE...; with --add it can do with less");
    const bool isStructure = count == 0 && !edit.structure.empty();
    if (!isStructure && count < 3)
        refuse("set --add needs NODE CHANNEL STREAM at least, or --structure alone");
}

void checkTransfer(const Edit& edit, bool isToOtherFile)
{
    if (edit.newWords.size() > edit.words.size())
        refuse("--as has more words than the address that it changes");
    if (edit.newWords.empty() && !isToOtherFile)
        refuse("--as is missing: the new address, or its last words");
    if (!isToOtherFile && std::equal(edit.newWords.rbegin(), edit.newWords.rend(), edit.words.rbegin()))
        refuse("--as names the same place");
}
} // namespace

Address Edit::from() const
{
    const std::size_t count = std::min(words.size(), kWordsOfElement);
    return Address({words.begin(), words.begin() + static_cast<std::ptrdiff_t>(count)});
}

Address Edit::to() const
{
    std::vector<std::string> target(words.begin(), words.end() - static_cast<std::ptrdiff_t>(newWords.size()));
    target.insert(target.end(), newWords.begin(), newWords.end());
    return Address(target);
}

void Edit::check(bool isToOtherFile) const
{
    if (verb == kSet)
        checkSet(*this);
    else if ((words.empty() && !removesStructures()) || words.size() > kWordsOfElement)
        refuse(verb == kRemove ? "NODE [CHANNEL [STREAM [INDEX]]] is needed, --structure or --unused"
                               : "NODE [CHANNEL [STREAM [INDEX]]] is needed");
    if (verb == kCopy || verb == kMove)
        checkTransfer(*this, isToOtherFile);
}

std::set<std::string> nodesOf(const std::vector<Edit>& edits)
{
    std::set<std::string> nodes;
    for (const Edit& edit : edits)
    {
        const bool needsNoReading = edit.verb == Edit::kRemove && edit.words.size() == 1;
        if (edit.words.empty() || needsNoReading)
            continue;
        nodes.insert(edit.words[0]);
        nodes.insert(edit.to().node);
    }
    return nodes;
}

void apply(const Edit& edit, SceneFile& scene)
{
    if (edit.verb == Edit::kSet)
        applySet(edit, scene);
    else if (edit.verb == Edit::kRemove)
        applyRemove(edit, scene);
    else
        transfer(edit, scene, scene);
}
