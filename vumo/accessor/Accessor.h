#pragma once

#include "vumo/accessor/ListedBlock.h"
#include "vumo/accessor/UnreadBlock.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace vumo::Data
{
namespace detail
{
struct AccessorState;
class LockWait;
struct FileBlock;
} // namespace detail

/// Reads and rewrites the metadata of one scene file without loading the scene.
///
///     std::string errors;
///     std::unique_ptr<Accessor> accessor = Accessor::readFile("town.ob", errors);
///     if (accessor)
///     {
///         accessor->associations()["Body"] = ...; // per node name; the scene's own under ""
///         accessor->write(errors);
///     }
///
/// An accessor holds the structures that the file declares and the associations that it applies, one for
/// each node name and the scene's own under `AccessorOvri::getSceneAssociationsName()`. It references its
/// structures, so they live on when the registry of structures does not know them.
///
/// BEWARE: write() stores what the accessor holds, nothing else, in place of all metadata in the file. A read with
/// filters leaves less in it than the file has, and writing removes the rest from the file, unless setUnread(kKeep) was
/// called before the read.
///
/// write() changes the file in place: its inode, owner, mode and links stay, and so does every byte in front of the
/// metadata. No crash harms the file unless setDurability() says otherwise.
///
/// Accessors may be used on several threads at once, each on one: while one reads, its thread has a registry of
/// structures of its own. write() is a change of the accessor. Of those that save to one file each locks out the
/// others.
class VUMO_EXPORT Accessor
{
public:
    /// Orders structures by name, byte by byte; a null name counts as empty. Throws `std::invalid_argument`
    /// for a null structure.
    struct VUMO_EXPORT StructureNameLessThan
    {
        bool operator()(const Structure* a, const Structure* b) const;
    };

    /// Structures of which no two have the same name.
    using StructureSet = std::set<const Structure*, StructureNameLessThan>;

    /// What write() does for the case that it is interrupted.
    enum eDurability
    {
        /// No crash harms the file, and write() waits until it is on the disk. What is going to be replaced is first
        /// stored beside it in an undo record, NAME.vumo-undo, which is removed when the new bytes are on the disk. A
        /// process or a machine that stops in between leaves the file with its record; the next read() or write(), or
        /// recover(), then restores the old bytes. In a directory where no record can be made the file is written
        /// without one.
        ///
        /// Let recover() see a scene before anything else reads it that does not know the record. The record is looked
        /// for under the file's name: a file that was renamed, or is read by another of its hard links, is not
        /// restored.
        kJournal,

        /// Nothing: a crash in the middle leaves a damaged file. For those who keep the file elsewhere.
        kMemoryOnly
    };

    /// What becomes of the metadata that a read() leaves in the file: of what a filter does not want, and of what
    /// cannot be read.
    enum eUnread
    {
        /// The read fails for what is wanted and cannot be read; write() removes what was not wanted.
        kDrop,

        /// The read goes on, unread() tells what was left, and write() leaves it in its place.
        kKeep
    };

    /// What read() lists, for listed() to give.
    enum eListing
    {
        kListNothing,
        kListRead, ///< what is read
        kListOnly  ///< all, and nothing is read: no value is parsed, and no structure made
    };

    /// Why a read() or a write() failed.
    struct VUMO_EXPORT Failure
    {
        /// What kind of failure, for programs to act upon.
        enum eKind
        {
            kNone,        ///< it did not fail
            kNoFile,      ///< there is no such file, or none was named
            kNoAccess,    ///< the file must not be read, or must not be written to
            kNotScene,    ///< it is no scene of the accessor's kind, as isFileSupported() tells
            kMalformed,   ///< the scene's end or its metadata are damaged, or cannot be read here
            kRefused,     ///< what is to be written could not be read again
            kLocked,      ///< somebody else is writing to the file
            kChanged,     ///< somebody else has changed the metadata since they were read, or replaced the file
            kNotRestored, ///< an earlier write() was interrupted, and the file cannot be restored
            kSystem       ///< another call of the system failed
        };

        /// What the system says about it, in English; empty when it says nothing.
        std::string systemReason() const;

        eKind kind = kNone;
        int systemError = 0; ///< `errno` of the call that failed; 0 when none did
    };

    /// What a write() does to the file.
    struct WriteCost
    {
        std::uint64_t position = 0; ///< of the first byte that changes, from 0
        std::uint64_t bytes = 0;    ///< written in the file; 0 when nothing has to be
        std::uint64_t oldLength = 0;
        std::uint64_t newLength = 0;
    };

    /// What write() does when somebody else has changed the metadata in the file.
    enum eConflict
    {
        kRefuse,   ///< refuses: nothing that anybody has saved is lost
        kOverwrite ///< puts what the accessor holds in the place of all that
    };

    Accessor(const Accessor&) = delete;
    Accessor& operator=(const Accessor&) = delete;

    /// Releases the structures.
    virtual ~Accessor();

    /// Puts the structures and associations that the accessor holds into the file fileName(), in place of
    /// the metadata that is there. False, with a message appended to `errors`, when that failed; the file is then as
    /// it was, unless the message says otherwise. Only the reason why a file is no binary scene replaces `errors`. This
    /// class itself cannot write any file.
    ///
    /// A structure that a stream uses and that is not among structures() is written after those; two different ones of
    /// one name are refused.
    ///
    /// Refused, unless setConflict() says otherwise, when the metadata in the file are not those that this accessor has
    /// read or written last, or when its last read failed: somebody else's would be lost. What else is in the file does
    /// not matter, nor whether it is another file of that name by now.
    ///
    /// Locks the file for other writers that use this library: the second one waits as long as setLockWait() says, and
    /// is refused then.
    virtual bool write(std::string& errors) const;

    /// Gives what write() would do to the file as it is now, and leaves it alone, unless an earlier write() was
    /// interrupted: then it is restored first. False, with the reason appended to `errors`, where write() would refuse,
    /// and for files of another kind than the two that the library knows; what write() only meets on its way, such as a
    /// full disk, is not foreseen.
    bool estimateWrite(WriteCost& cost, std::string& errors) const;

    /// Says whether the file, going by its contents, is one that this accessor can read.
    virtual bool isFileSupported(const std::string& fileName) const;

    /// Chooses what the following calls of write() do for the case that they are interrupted; kJournal at first.
    /// Whatever is chosen, the old bytes are put back when a call of the system fails, as on a full disk.
    void setDurability(eDurability durability);
    eDurability durability() const;

    /// Chooses how the following calls of write() write floating-point numbers: with six digits, as the formats of the
    /// files prescribe, or exactly. A record whose line gets too long with exact numbers is refused; nothing falls back
    /// to six digits by itself.
    void setNumbers(eNumbers numbers);
    eNumbers numbers() const;

    /// Chooses what the following calls of read() do about metadata that they leave in the file; kDrop at first. What
    /// was chosen for the last read() counts for the calls of write() after it.
    ///
    /// With kKeep, write() puts the metadata that the accessor holds in the place of what was read, and leaves what was
    /// not read byte by byte where it stands, without holding it in memory. An entry of associations() removes what was
    /// left under its name, and replaces it unless it is empty; likewise a structure. New structures come after the
    /// last one in the file, and new entries after all else. Of two blocks for one name the one that a read() without
    /// filters gives counts, and write() removes the other. While associations are left in the file, so are all
    /// structures, and one of the same name with other members is refused, as is a file whose metadata somebody else
    /// has changed since. A block without an end, a name, a format or a text is damage all the same: the read fails.
    void setUnread(eUnread unread);

    /// What the last read() left in the file, in the order of the file, if kKeep was chosen for it; as it stands there
    /// after write().
    std::vector<UnreadBlock> unread() const;

    /// Chooses whether the following calls of read() also tell what the lines of the texts say, or do nothing else;
    /// kListNothing at first. After a read() that only lists, the accessor holds no metadata, and write() is refused
    /// as after one that failed. The kinds of files that the library does not know are read as ever, and not listed.
    void setListing(eListing listing);
    eListing listing() const;

    /// What the last read() has listed, in the order of the file. With kListOnly these are all pieces of metadata, of
    /// two with one name both, and those that cannot be read, too; it fails where a piece has not all that makes one.
    const std::vector<ListedBlock>& listed() const;

    /// Where the byte stands in the file that gives a character of the text of such a block. The messages in `why`
    /// count characters in the text alone, without the escapes of a statement and in the encoding of the locale. The
    /// position of the block when the file does not hold that any more.
    std::uint64_t findCharacter(const UnreadBlock& block, std::uint64_t character) const;

    /// Chooses what the following calls of write() do when somebody else has changed the metadata in the file.
    void setConflict(eConflict conflict);
    eConflict conflict() const;

    /// A number for the metadata that the accessor has read, or written since: for all of the file, also for what a
    /// filter left out, each statement or chunk as it stands there. In a binary scene they begin with the first "DATS"
    /// chunk. 0 before a read and after one that failed. The same metadata give the same number, on one machine.
    std::uint64_t checksum() const;

    /// Chooses how many milliseconds write() waits for another writer, and read() tries again while somebody else is
    /// writing, before they refuse; at first 0.
    void setLockWait(unsigned int milliseconds);
    unsigned int lockWait() const;

    /// Why the last read(), readMore() or write() failed. The messages in `errors` say what failed, and where.
    const Failure& failure() const;

    /// Reads more nodes of the file, by the names that `associationNames` has in read(), and adds them to
    /// associations(), and the structures that they use to structures(). Leaves alone what is there already. The last
    /// read() was done with kKeep and left them out, or could not read them.
    ///
    /// False, with the reason appended to `errors` and nothing added, when one of them cannot be read, or when somebody
    /// else has changed the metadata since.
    bool readMore(const std::set<std::string>& names, std::string& errors);

    /// Reads all metadata of the file: the next function without filters, which says what becomes of `errors`.
    bool read(const std::string& fileName, std::string& errors);

    /// Reads the wanted metadata of the file, which replaces what the accessor held. A null set wants every
    /// name; `associationNames` are node names, and the scene associations name for the scene's own.
    ///
    /// False when that failed; the accessor is then empty. It is also empty after an exception, which is passed on.
    /// Either way the registry of structures is afterwards as it was.
    ///
    /// When the file cannot be opened or is not a scene of its kind, the reason replaces what `errors` holds; what is
    /// wrong with its metadata, or with an interrupted write, is appended: of all structures and nodes that cannot be
    /// read, in the order of the file, each with its place.
    ///
    /// Restores the file first, as recover() does, if writing it was interrupted; a file that would have to be restored
    /// and cannot be written to is not read. Nor is one that somebody else writes to meanwhile.
    ///
    /// A structure filter must leave in every structure that the wanted associations use: without it their
    /// elements cannot be read, and the read fails.
    ///
    /// The references on the structures that the accessor held before are not released: structures that a
    /// caller obtained from an earlier read stay alive, for good. Call clear() first to release them.
    bool read(const std::string& fileName, const std::set<std::string>* structureNames,
              const std::set<std::string>* associationNames, std::string& errors);

    /// The name given to the last read(), successful or not; write() goes there.
    const std::string& fileName() const;

    /// Referenced by the accessor: valid until it reads, gets other structures or is destroyed.
    const StructureSet& structures() const;

    /// References the structures of the set and releases those held before. Throws `std::invalid_argument`,
    /// with nothing changed, when one of them is null.
    void setStructures(const StructureSet& structures);

    /// By node name; the scene's own under the scene associations name, the empty one. Edit it to change what
    /// write() stores.
    const std::map<std::string, Associations>& associations() const;
    std::map<std::string, Associations>& associations();

    /// Removes and releases all structures, removes all associations, forgets what is left in the file; keeps the file
    /// name.
    void clear();

    /// The file-name extensions, in lower case and without a dot, for which there is an accessor.
    static std::set<std::string> supportedExtensions();

    /// A new, empty accessor for files of that name's extension, whatever its case; null when there is none.
    /// A name without a dot is an extension as a whole.
    static std::unique_ptr<Accessor> accessorByExtension(const std::string& fileName);

    /// An accessor that has read all metadata of the file. Null when there is none for its extension, with the reason
    /// appended to `errors`, or when read() failed, with `errors` as that leaves it.
    static std::unique_ptr<Accessor> readFile(const std::string& fileName, std::string& errors);

    /// Gives all that the file holds as read() with kListOnly does. False, with the reason in `errors` as that leaves
    /// it, also when the file is of another kind than the two that the library knows.
    static bool list(const std::string& fileName, std::vector<ListedBlock>& entries, std::string& errors);

    /// Restores the file from its undo record if writing it was interrupted, and removes the record. A record that its
    /// writer did not complete is only removed, as the file was not touched yet, and so is that of a change which was
    /// complete. True also when there is no record.
    ///
    /// False, with the reason appended to `errors` and nothing changed, when the file or its directory cannot be
    /// written to, when somebody is writing it, or when the record does not fit the file: then somebody has changed the
    /// file since, and has to decide whether to remove the record.
    static bool recover(const std::string& fileName, std::string& errors);

    static bool Debug(const Accessor* object, vumo::Debug::Print& request);
    static bool Debug(const Accessor* object, vumo::Debug::Footprint& request);

protected:
    Accessor();

    /// Reads the file fileName(): registers the wanted structures with `Structure::registerStructure`, from
    /// where read() collects them, and stores the wanted associations in associations().
    virtual bool performRead(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                             std::string& errors) = 0;

    /// What this accessor holds, for the kinds of files that the library itself knows.
    detail::AccessorState& state() const;

private:
    struct Impl;

    bool readOnce(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                  const detail::LockWait& wait, std::string& errors);
    void forget();
    void keepRegisteredStructures();
    void takeOver(detail::FileBlock& block, const Associations& associations);

    std::unique_ptr<Impl> mImpl;
};
} // namespace vumo::Data
