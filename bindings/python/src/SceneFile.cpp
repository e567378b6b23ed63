#include "SceneFile.h"

#include "Text.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace py = pybind11;
using namespace vumo::Data;

namespace
{
/// How many arrays look at a block of elements, by its address. All scenes share it, as streams may share elements;
/// it is guarded by the interpreter's lock.
std::unordered_map<const void*, std::size_t>& views()
{
    static auto* const all = new std::unordered_map<const void*, std::size_t>; // outlives arrays at the very end
    return *all;
}

/// Whether these messages of the library are about the metadata of that node.
bool tellsOf(const std::string& node, const std::string& text)
{
    const std::string name = node.empty() ? "the scene" : "node '" + node + "'";
    return text.find("The metadata of " + name + " cannot be written") != std::string::npos ||
           text.find("in the metadata of " + name + ", from byte") != std::string::npos;
}
} // namespace

/// What a capsule under an array holds.
class SceneFile::View
{
public:
    View(std::shared_ptr<SceneFile> scene, const std::string& node, const void* block)
        : mScene(std::move(scene)),
          mNode(node),
          mBlock(block)
    {
        ++views()[mBlock];
        ++mScene->mViews[mNode];
    }

    View(const View&) = delete;
    View& operator=(const View&) = delete;

    ~View()
    {
        const auto count = views().find(mBlock);
        if (--count->second == 0)
            views().erase(count);
        const auto ofNode = mScene->mViews.find(mNode);
        if (--ofNode->second == 0)
            mScene->mViews.erase(ofNode);
        mScene->releaseIfUnused();
    }

private:
    const std::shared_ptr<SceneFile> mScene;
    const std::string mNode;
    const void* const mBlock;
};

SceneFile::SceneFile(const std::string& fileName, const std::optional<std::vector<std::string>>& nodes,
                     const Options& options)
    : mFileName(fileName),
      mOptions(options)
{
    workUnlocked([&] {
        const std::set<std::string> wanted =
            nodes ? std::set<std::string>(nodes->begin(), nodes->end()) : std::set<std::string>();
        mReader = read(&wanted);
        listNodes(nodes);
    });
}

/// A new accessor that has read these nodes, or all for null, and keeps all others.
std::unique_ptr<Accessor> SceneFile::read(const std::set<std::string>* nodes)
{
    std::unique_ptr<Accessor> accessor = Failure::newAccessor(mFileName);
    accessor->setUnread(Accessor::kKeep);
    accessor->setNumbers(mOptions.numbers);
    accessor->setConflict(mOptions.conflict);
    accessor->setDurability(mOptions.durability);
    accessor->setLockWait(mOptions.lockWait);
    std::string errors;
    if (!accessor->read(mFileName, nullptr, nodes, errors))
        throw Failure::of(*accessor, errors);
    return accessor;
}

void SceneFile::listNodes(const std::optional<std::vector<std::string>>& wanted)
{
    const auto add = [this](const std::string& name) {
        if (mNodeSet.insert(name).second)
            mNodes.push_back(name);
    };
    if (wanted)
    {
        for (const std::string& name : *wanted)
        {
            if (mReader->associations().count(name) > 0)
                add(name);
        }
    }
    for (const UnreadBlock& block : mReader->unread())
    {
        if (block.kind == UnreadBlock::kAssociations &&
            (!wanted || std::find(wanted->begin(), wanted->end(), block.name) != wanted->end()))
            add(block.name);
    }
}

/// A new accessor that has read the file as it is now, and holds what was edited.
std::unique_ptr<Accessor> SceneFile::edited()
{
    // Structures stay in the file while there are nodes in it that nobody has read.
    const std::set<std::string> none;
    std::unique_ptr<Accessor> writer = read(mRemoved.empty() ? &none : nullptr);
    if (mOptions.conflict == Accessor::kRefuse && writer->checksum() != mReader->checksum())
        throw Failure{Failure::kChanged, mFileName + " was changed by somebody else since it was opened.", mFileName};
    for (const std::string& name : mEdited)
        writer->associations()[name] = mReader->associations()[name];
    Accessor::StructureSet structures;
    for (const Structure* const structure : writer->structures())
    {
        if (mRemoved.count(structure->name()) == 0)
            structures.insert(structure);
    }
    for (const vumo::Ref<const Structure>& structure : mDeclared)
        structures.insert(structure.get());
    writer->setStructures(structures);
    return writer;
}

void SceneFile::save()
{
    requireWritable();
    workUnlocked([&] {
        std::unique_ptr<Accessor> writer = edited();
        std::string errors;
        if (!writer->write(errors))
            throw unsaved(*writer, errors);
        mReader = std::move(writer);
    });
    mEdited.clear();
    for (const auto& [node, count] : mViews)
        mEdited.insert(node);
    mDeclared.clear();
    mRemoved.clear();
}

Accessor::WriteCost SceneFile::estimateSave()
{
    requireWritable();
    Accessor::WriteCost cost;
    workUnlocked([&] {
        const std::unique_ptr<Accessor> writer = edited();
        std::string errors;
        if (!writer->estimateWrite(cost, errors))
            throw unsaved(*writer, errors);
    });
    return cost;
}

void SceneFile::close()
{
    if (mIsBusy)
        requireOpen();
    mIsClosed = true;
    releaseIfUnused();
}

void SceneFile::releaseIfUnused()
{
    if (mIsClosed && mViews.empty())
        mReader.reset();
}

std::uint64_t SceneFile::checksum() const
{
    requireOpen();
    return mReader->checksum();
}

const std::vector<std::string>& SceneFile::nodes() const
{
    requireOpen();
    return mNodes;
}

bool SceneFile::hasNode(const std::string& name) const
{
    requireOpen();
    return mNodeSet.count(name) > 0;
}

void SceneFile::load(const std::set<std::string>& names)
{
    requireOpen();
    std::set<std::string> missing;
    for (const std::string& name : names)
    {
        if (hasNode(name) && mReader->associations().count(name) == 0)
            missing.insert(name);
    }
    if (missing.empty())
        return;
    std::string errors;
    bool isRead = false;
    workUnlocked([&] { isRead = mReader->readMore(missing, errors); });
    if (!isRead)
        throw unreadable(missing, errors);
}

/// The node with some others that are not parsed yet. Each look at the file costs a walk over all of its metadata, so
/// each brings along twice as many nodes as the one before: touching all of them one by one takes linear time, in
/// whatever order.
std::set<std::string> SceneFile::batchOf(const std::string& name)
{
    std::set<std::string> batch;
    auto next = std::find(mNodes.begin(), mNodes.end(), name);
    for (std::size_t i = 0; i < mNodes.size() && batch.size() < mBatch; ++i)
    {
        if (mReader->associations().count(*next) == 0)
            batch.insert(*next);
        if (++next == mNodes.end())
            next = mNodes.begin();
    }
    return batch;
}

const Associations& SceneFile::node(const std::string& name)
{
    if (!hasNode(name))
        throw notFound("There is no node " + name + ".");
    auto found = mReader->associations().find(name);
    if (found != mReader->associations().end())
        return found->second;
    try
    {
        load(batchOf(name));
        mBatch *= 2;
    }
    catch (const Failure&)
    {
        mBatch = 1; // one that cannot be read hides all that were to come with it
        load({name});
    }
    return mReader->associations()[name];
}

Associations& SceneFile::editNode(const std::string& name)
{
    requireWritable();
    node(name);
    mEdited.insert(name);
    return mReader->associations()[name];
}

void SceneFile::addNode(const std::string& name)
{
    requireWritable();
    if (mNodeSet.count(name) > 0)
        return;
    const std::vector<UnreadBlock> unread = mReader->unread();
    const bool isInFile = std::any_of(unread.begin(), unread.end(), [&name](const UnreadBlock& block) {
        return block.kind == UnreadBlock::kAssociations && block.name == name;
    });
    if (isInFile && mEdited.count(name) == 0) // nor was it removed
        throw Failure{Failure::kRefused,
                      "The file has a node \"" + name + "\", which is not among those that it was opened with.",
                      mFileName, name};
    mNodeSet.insert(name);
    mNodes.push_back(name);
    mReader->associations()[name] = Associations();
}

void SceneFile::removeNode(const std::string& name)
{
    requireWritable();
    const auto held = mReader->associations().find(name);
    if (held != mReader->associations().end())
    {
        for (const Channel& channel : held->second)
        {
            for (const Stream* const stream : channel)
                requireUnviewed(*stream);
        }
    }
    if (mNodeSet.erase(name) == 0)
        throw notFound("There is no node " + name + ".");
    mNodes.erase(std::find(mNodes.begin(), mNodes.end(), name));
    mReader->associations()[name] = Associations(); // an empty entry removes what is in the file
    mEdited.insert(name);
}

void SceneFile::removeChannel(const std::string& node, const std::string& channel)
{
    Associations& associations = editNode(node);
    if (const Channel* const found = associations.findChannel(channel))
    {
        for (const Stream* const stream : *found)
            requireUnviewed(*stream);
    }
    if (!associations.removeChannel(channel))
        throw notFound("There is no channel " + channel + " in the node " + node + ".", node);
}

void SceneFile::removeStream(const std::string& node, const std::string& channel, const std::string& stream)
{
    Channel* const found = editNode(node).findChannel(channel);
    if (const Stream* const old = found ? found->findDataStream(stream) : nullptr)
        requireUnviewed(*old);
    if (!found || !found->removeDataStream(stream))
        throw notFound("There is no stream " + stream + " in the channel " + channel + ".", node);
}

std::map<std::string, const Structure*> SceneFile::structures() const
{
    requireOpen();
    std::map<std::string, const Structure*> all;
    for (const auto& [name, structure] : mAdded)
    {
        if (structure->refCount() > 1) // else no stream uses it any more
            all.emplace(name, structure.get());
    }
    for (const Structure* const structure : mReader->structures())
    {
        if (mRemoved.count(structure->name()) == 0)
            all[structure->name()] = structure;
    }
    return all;
}

const Structure& SceneFile::adopt(const Structure& structure)
{
    const std::map<std::string, const Structure*> all = structures();
    const auto found = all.find(structure.name());
    if (found == all.end())
        return *(mAdded[structure.name()] = vumo::Ref<const Structure>(new Structure(structure)));
    if (*found->second != structure)
        throw Failure{Failure::kRefused,
                      std::string("The scene has a structure \"") + structure.name() +
                          "\" with other members. Give the new one another name.",
                      mFileName};
    return *found->second;
}

void SceneFile::declare(const Structure& structure)
{
    requireWritable();
    mDeclared.emplace_back(&adopt(structure));
}

void SceneFile::undeclare(const std::string& name)
{
    requireWritable();
    if (structures().count(name) == 0)
        throw notFound("There is no structure " + name + ".");
    mRemoved.insert(name);
}

bool SceneFile::isViewed(const Stream& stream)
{
    return views().count(stream.elementView().data()) > 0;
}

void SceneFile::requireUnviewed(const Stream& stream)
{
    if (isViewed(stream))
        throw StillViewed{"Arrays look at the elements of the stream \"" + stream.name() +
                          "\": they cannot be moved or removed while one of them is in use."};
}

py::capsule SceneFile::viewOf(const std::string& node, const Stream& stream)
{
    return {new View(shared_from_this(), node, stream.elementView().data()),
            [](void* view) { delete static_cast<View*>(view); }};
}

void SceneFile::requireOpen() const
{
    if (mIsClosed)
        throw Failure{Failure::kClosed, "The scene " + mFileName + " is closed.", mFileName};
    if (mIsBusy)
        throw Failure{Failure::kBusy, "Another thread is using the scene " + mFileName + ".", mFileName};
}

void SceneFile::requireWritable() const
{
    requireOpen();
    if (!isWritable())
        throw Failure{Failure::kReadOnly, mFileName + " was opened to be read only: open it with mode \"r+\".",
                      mFileName};
}

Failure SceneFile::notFound(const std::string& text, const std::optional<std::string>& node) const
{
    return {Failure::kNotFound, text, mFileName, node};
}

/// Says which of the nodes that were edited could not be written.
Failure SceneFile::unsaved(const Accessor& writer, const std::string& text) const
{
    Failure result = Failure::of(writer, text);
    for (const std::string& name : mEdited)
    {
        if (tellsOf(name, text))
            result.node = name;
    }
    return result;
}

/// Says which of the nodes could not be read, and where it stands.
Failure SceneFile::unreadable(const std::set<std::string>& names, const std::string& text) const
{
    Failure result = Failure::of(*mReader, text);
    for (const UnreadBlock& block : mReader->unread())
    {
        if (block.kind == UnreadBlock::kAssociations && names.count(block.name) > 0 &&
            (names.size() == 1 || tellsOf(block.name, text)))
        {
            result.node = block.name;
            result.position = block.position;
        }
    }
    return result;
}
