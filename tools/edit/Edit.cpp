#include "edit/Edit.h"

#include "core/Elements.h"
#include "core/Nearest.h"
#include "core/Text.h"
#include "edit/Assignment.h"
#include "vumo/accessor/AccessorOvri.h"
#include "vumo/foundation/Ref.h"

#include <algorithm>
#include <map>

using namespace vumo::Data;

namespace
{
constexpr std::size_t kWordsOfElement = 4;

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

/// The structure that is named.
const Structure& knownStructure(const SceneFile& scene, const std::string& name)
{
    if (const Structure* const known = structureByName(scene, name))
        return *known;
    std::vector<std::string> names;
    for (const Structure* const structure : scene.metadata().structures())
        names.emplace_back(structure->name());
    throw scene.failure(kNo, "there is no structure " + inQuotes(name) + didYouMean(name, names));
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

/// The stream at that address, shared with nobody.
Stream& streamToEdit(SceneFile& scene, const Address& address)
{
    scene.stream(address); // says what is missing
    return scene.metadata().associations()[address.node].edit(*address.channel, *address.stream);
}

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
    Handle element = elementAt(scene, stream, *address.index);
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

void applyRemove(const Edit& edit, SceneFile& scene)
{
    const Address address = edit.from();
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

/// Whether there is to be something in the place of what is there.
bool mayReplace(const SceneFile& scene, Edit::eMerge merge, const std::string& what)
{
    if (merge == Edit::kFail)
        throw scene.failure(kNotWritten, what + " is there already; --merge says whether to keep or to replace it");
    return merge == Edit::kReplace;
}

/// A copy or a move.
class Transfer
{
public:
    Transfer(const Edit& edit, SceneFile& from, SceneFile& to)
        : mEdit(edit),
          mFrom(from),
          mTo(to),
          mSource(edit.from()),
          mTarget(edit.to()),
          mIsMove(edit.verb == Edit::kMove)
    {
    }

    void run()
    {
        Associations& source = mFrom.node(mSource.node);
        if (mSource.index)
            return putElement();
        if (mSource.stream)
            mFrom.stream(mSource); // says what is missing
        else if (mSource.channel)
            mFrom.channel(mSource);
        Associations& target = nodeToEdit(mTo, mTarget.node);
        if (mSource.stream)
            putStream(Channel(*source.findChannel(*mSource.channel)), *mSource.stream, target, *mTarget.channel,
                      *mTarget.stream);
        else if (mSource.channel)
            putChannel(source, *mSource.channel, target, *mTarget.channel);
        else
            putNode(source, target);
    }

private:
    void putNode(Associations& source, Associations& target)
    {
        std::vector<std::string> names;
        for (const Channel& channel : source)
            names.push_back(channel.name());
        for (const std::string& name : names)
            putChannel(source, name, target, name);
    }

    void putChannel(Associations& source, const std::string& name, Associations& target, const std::string& newName)
    {
        Channel channel = *source.findChannel(name);
        std::vector<std::string> names;
        for (const Stream* const stream : channel)
            names.push_back(stream->name());
        target.channel(newName);
        for (const std::string& streamName : names)
            putStream(channel, streamName, target, newName, streamName);
        if (mIsMove && channel.empty())
            source.removeChannel(name);
    }

    void putStream(Channel channel, const std::string& name, Associations& target, const std::string& newChannel,
                   const std::string& newName)
    {
        const bool isPut =
            ::putStream(mTo, *channel.findDataStream(name), newName, target.channel(newChannel), mEdit.merge);
        if (isPut && mIsMove)
            channel.removeDataStream(name);
    }

    void putElement()
    {
        const Stream& source = mFrom.stream(mSource);
        const Index index = indexFrom(mFrom, source, *mSource.index);
        Stream carrier(source.structure(), source.name()); // of this element alone, to change its structure
        carrier.setIndexType(source.indexType());
        carrier.setElement(index, elementAt(mFrom, source, *mSource.index));

        Stream& target = targetStream(source);
        const Index newIndex = indexFrom(mTo, target, *mTarget.index);
        if (target.hasElement(newIndex) &&
            !mayReplace(mTo, mEdit.merge, "the element at index " + inQuotes(*mTarget.index)))
            return;
        if (!carrier.rebase(target.structure()))
            throw mTo.failure(kNotWritten, "stream " + inQuotes(target.name()) + " is of another structure");
        target.setElement(newIndex, carrier.element(index));
        if (mIsMove)
            streamToEdit(mFrom, mSource).removeElement(index);
    }

    /// The stream that the element goes to; a new one like the source where there is none.
    Stream& targetStream(const Stream& source)
    {
        Channel channel = nodeToEdit(mTo, mTarget.node).channel(*mTarget.channel);
        if (!channel.findDataStream(*mTarget.stream))
        {
            Stream stream(source.structure(), *mTarget.stream);
            stream.setIndexType(source.indexType());
            channel.setDataStream(stream);
        }
        return streamToEdit(mTo, mTarget);
    }

    const Edit& mEdit;
    SceneFile& mFrom;
    SceneFile& mTo;
    const Address mSource;
    const Address mTarget;
    const bool mIsMove;
};

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
    else if (words.empty() || words.size() > kWordsOfElement)
        refuse("NODE [CHANNEL [STREAM [INDEX]]] is needed");
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
        apply(edit, scene, scene);
}

void apply(const Edit& edit, SceneFile& from, SceneFile& to)
{
    Transfer(edit, from, to).run();
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
