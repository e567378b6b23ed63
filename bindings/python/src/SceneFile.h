#pragma once

#include "Failure.h"
#include "vumo/accessor/Accessor.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Stream.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

/// The metadata of one scene file, node by node as they are asked for; what the classes of the package stand on.
///
/// Nodes are parsed by an accessor that never writes. A save reads the file once more, with nothing parsed, and puts in
/// what was edited: a node that was only looked at stays as it is, byte by byte.
///
/// Files are read and written without the interpreter's lock. A call that comes from another thread meanwhile is
/// refused.
class SceneFile : public std::enable_shared_from_this<SceneFile>
{
public:
    struct Options
    {
        bool isWritable = false;
        vumo::Data::eNumbers numbers = vumo::Data::kExact;
        vumo::Data::Accessor::eConflict conflict = vumo::Data::Accessor::kRefuse;
        vumo::Data::Accessor::eDurability durability = vumo::Data::Accessor::kJournal;
        unsigned int lockWait = 0; ///< in milliseconds
    };

    /// Lists the file; parses the nodes that are named, and from then on has no others.
    SceneFile(const std::string& fileName, const std::optional<std::vector<std::string>>& nodes,
              const Options& options);
    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;
    ~SceneFile() = default;

    const std::string& fileName() const { return mFileName; }
    bool isWritable() const { return mOptions.isWritable; }
    bool isClosed() const { return mIsClosed; }

    /// Says whether a save would write something. Nodes count at which arrays look that can be written to, as nobody
    /// sees when they are.
    bool isEdited() const { return !mEdited.empty() || !mDeclared.empty() || !mRemoved.empty(); }

    /// Writes what was edited. What is in memory stays.
    void save();

    /// What that would do to the file.
    vumo::Data::Accessor::WriteCost estimateSave();

    /// Ends every use. Memory that arrays look at lives on until the last of them is gone.
    void close();

    /// A number for all metadata of the file; see `Accessor::checksum`.
    std::uint64_t checksum() const;

    /// The nodes in the order of the file, the scene's own metadata under the empty name.
    const std::vector<std::string>& nodes() const;
    bool hasNode(const std::string& name) const;

    /// Parses these nodes, if they are not parsed yet.
    void load(const std::set<std::string>& names);

    /// The metadata of a node, which is parsed if need be, to be read only.
    const vumo::Data::Associations& node(const std::string& name);

    /// The same to be changed.
    vumo::Data::Associations& editNode(const std::string& name);

    /// An empty node, if there is none of that name.
    void addNode(const std::string& name);
    void removeNode(const std::string& name);
    void removeChannel(const std::string& node, const std::string& channel);
    void removeStream(const std::string& node, const std::string& channel, const std::string& stream);

    /// The structures that the file declares, and those that were added since, by name.
    std::map<std::string, const vumo::Data::Structure*> structures() const;

    /// The structure of this scene that is equal to the given one, which it becomes if there is none of its name.
    /// Refuses one that differs from that of the same name.
    const vumo::Data::Structure& adopt(const vumo::Data::Structure& structure);

    /// Adopts the structure and saves it even where no stream uses it.
    void declare(const vumo::Data::Structure& structure);

    /// Takes the structure of that name out of the scene: another may have the name then. A save reads all nodes, and
    /// is refused while a stream uses a structure of the name that is not the new one.
    void undeclare(const std::string& name);

    /// Whatever moves or frees the memory of a stream's elements has to ask first: throws `StillViewed` while arrays
    /// look at it.
    static void requireUnviewed(const vumo::Data::Stream& stream);
    static bool isViewed(const vumo::Data::Stream& stream);

    /// What an array is based on that looks at the elements of a dense stream: keeps their memory alive, and notes that
    /// it is looked at.
    pybind11::capsule viewOf(const std::string& node, const vumo::Data::Stream& stream);

    /// Throws where the scene is closed, or used by another thread.
    void requireOpen() const;
    void requireWritable() const;

    /// Does work that takes long and does not touch Python, without the interpreter's lock.
    template <class Work>
    void workUnlocked(Work&& work)
    {
        const Busy busy(&mIsBusy);
        const pybind11::gil_scoped_release unlocked;
        work();
    }

private:
    class View;

    /// Marks the scene as used.
    class Busy
    {
    public:
        explicit Busy(bool* isBusy) : mIsBusy(isBusy) { *mIsBusy = true; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;
        ~Busy() { *mIsBusy = false; }

    private:
        bool* const mIsBusy;
    };

    std::unique_ptr<vumo::Data::Accessor> read(const std::set<std::string>* nodes);
    std::unique_ptr<vumo::Data::Accessor> edited();
    void listNodes(const std::optional<std::vector<std::string>>& wanted);
    std::set<std::string> batchOf(const std::string& name);
    Failure notFound(const std::string& text, const std::optional<std::string>& node = std::nullopt) const;
    Failure unreadable(const std::set<std::string>& names, const std::string& text) const;
    Failure unsaved(const vumo::Data::Accessor& writer, const std::string& text) const;
    void releaseIfUnused();

    const std::string mFileName;
    const Options mOptions;
    std::unique_ptr<vumo::Data::Accessor> mReader; ///< null when closed and no longer looked at
    std::vector<std::string> mNodes;
    std::unordered_set<std::string> mNodeSet;
    std::set<std::string> mEdited; ///< nodes, also those that were removed
    std::map<std::string, vumo::Ref<const vumo::Data::Structure>> mAdded;
    std::vector<vumo::Ref<const vumo::Data::Structure>> mDeclared;
    std::set<std::string> mRemoved;            ///< structures of the file
    std::size_t mBatch = 1;                    ///< how many nodes the next one that is touched brings along
    std::map<std::string, std::size_t> mViews; ///< how many arrays look at each node
    bool mIsBusy = false;
    bool mIsClosed = false;
};
