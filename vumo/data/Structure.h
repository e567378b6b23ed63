#pragma once

#include "vumo/data/Member.h"
#include "vumo/data/StructureIterator.h"
#include "vumo/foundation/Checkpointed.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/OwnedText.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/RefCounted.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

namespace vumo::Data
{
/// A named record layout: the ordered members of an element, and where each lies in its data block.
///
/// Every element of a `Stream` is one block of totalSize() bytes, laid out by one structure. The values
/// of a block may lie at any address, because the blocks of elements follow each other without regard
/// to the largest alignment in them.
///
/// A new structure is held by nobody; whoever keeps it calls ref() and later unref(), or lets a `Ref` do so, as make()
/// does:
///
///     const Ref<Structure> structure(Structure::create());
///     structure->addMember(Member::kFloat, 3, "Origin");
///
/// What the library is merely handed (to compare, print, measure, register, write) it does not hold, and
/// a structure that nobody holds survives that. An iterator or a `Handle` on it does hold it, and deletes
/// it on the way out when it was the only one.
///
/// Threads may share a structure that nobody changes. Structures are registered before threads start.
class VUMO_EXPORT Structure : public RefCounted, public Checkpointed, private Counted<Structure>
{
public:
    /// A new structure named "structure", on the heap, held by nobody.
    static Structure* create();

    /// What addMember() takes; the name is borrowed.
    struct NewMember
    {
        Member::eDataType type;
        unsigned int dimension;
        const char* name;
    };

    /// A new structure with these members, which the caller holds:
    ///
    ///     const Ref<Structure> point = Structure::make("Point", {{Member::kFloat, 3, "Position"}});
    ///
    /// Null when addMember() would refuse one of them.
    static Ref<Structure> make(const char* name, const std::vector<NewMember>& members);

    Structure();

    /// Copies the name; null means "structure".
    explicit Structure(const char* name);

    /// Copies name, members, their offsets and the default values; the copy is held by nobody.
    Structure(const Structure& other);
    Structure& operator=(const Structure& other);
    ~Structure() override;

    /// Equal when name, size and all members with their offsets are.
    bool operator==(const Structure& other) const;
    bool operator!=(const Structure& other) const { return !(*this == other); }

    /// Never null; borrowed until the name changes.
    const char* name() const { return mName.get(); }

    /// Copies the name; null means "structure".
    void setName(const char* name);

    /// Appends a member of `dimension` values. False, with nothing changed, for the invalid type, for
    /// dimension 0, for a null or empty name, and for a name that a member has already.
    ///
    /// Must not be called while elements of the structure exist: their blocks do not grow with it.
    bool addMember(Member::eDataType type, unsigned int dimension, const char* name);

    /// Appends several members as addMember() would one after the other, refused ones left out, in time linear in
    /// their number. Returns how many were appended.
    unsigned int addMembers(const std::vector<NewMember>& newMembers);

    unsigned int size() const { return mMemberCount; }
    unsigned int memberCount() const { return mMemberCount; }
    bool empty() const { return mMemberCount == 0; }

    /// The member at that position or null; borrowed until a member is added. Unlike an iterator it does
    /// not hold the structure.
    const Member* member(unsigned int index) const { return index < mMemberCount ? &mMembers[index] : nullptr; }

    StructureIterator begin() const;
    StructureIterator end() const;
    StructureIterator cbegin() const { return begin(); }
    StructureIterator cend() const { return end(); }

    /// The size of an element's data block in bytes: the end of the last member, rounded up to the
    /// alignment of the first one's type.
    unsigned long long totalSize() const { return mTotalSize; }

    /// The following make and treat element data blocks: totalSize() bytes each, from array new.

    /// The default values, as one block; null for a structure of size 0. Owned by the structure and
    /// valid until a member is added.
    const char* defaultData() const;

    /// Sets all values of a block to their defaults, and the bytes between them to zero. What was there
    /// is not released.
    void fillWithDefaultChunk(char* data) const { fillWithDefaultChunks(data, 1); }

    /// The same for `count` blocks that follow each other.
    void fillWithDefaultChunks(char* data, unsigned long long count) const;

    /// A new block of default values, owned by the caller; null for a structure of size 0.
    char* allocateDefaultChunk() const;

    /// A deep copy of `src`, owned by the caller; null for a structure of size 0.
    char* duplicateChunk(const char* src) const;

    /// Deep-copies `src` to `dest`, whose former contents are not released.
    void fillWithDuplicateChunk(char* dest, const char* src) const
    {
        if (totalSize() == 0)
            return;
        std::memcpy(dest, src, mTotalSize);
        if (hasStrings())
            duplicateStrings(dest, src);
    }

    /// Frees what the values own; the block itself stays the caller's to free.
    void destroyChunk(char* data) const
    {
        if (hasStrings())
            destroyStrings(data);
    }

    bool chunkIsDefault(const char* data) const;

    /// Asks one member, or all of them when the name is null. False for null data or an unknown name.
    bool chunkMemberIsDefault(const char* data, const char* memberName) const;

    /// The registry: the structures that text formats and scene files find by name. It references what
    /// it holds. Ordered by address. That of the process, but while an `Accessor` reads one of its thread's own.
    static std::set<Structure*>& allStructures();

    /// False when the structure itself, or one equal to it, is registered.
    static bool registerStructure(Structure& structure);

    /// False when it is not registered. May delete the structure.
    static bool deregisterStructure(Structure& structure);

    /// The first registered structure of that name or null; owned by those who hold it.
    static Structure* structureByName(const char* name);
    static void deleteAllStructures();

    static bool Debug(const Structure* object, vumo::Debug::Print& request);
    static bool Debug(const Structure* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    // Hold a structure by the following two, which leave it alone while it is being destroyed.
    friend class Handle;
    friend class StructureIterator;

    void refFromIterator() const
    {
        if (!mBeingDestroyed)
            ref();
    }

    void unrefFromIterator() const
    {
        if (!mBeingDestroyed)
            unref();
    }

    /// A run of strings in a block: the offsets of the first one and of the end of the last one.
    struct StringRun
    {
        unsigned long long begin;
        unsigned long long end;
    };

    bool hasStrings() const { return !mStrings.empty(); }

    /// Calls `visit` with the address of each string of a block.
    template <class Visitor>
    void visitStrings(char* data, Visitor&& visit) const;

    void duplicateStrings(char* dest, const char* src) const;
    void destroyStrings(char* data) const;

    const Member* findMember(const char* name) const;
    void appendMembers(const std::vector<const NewMember*>& accepted);
    void computeLayout();
    char* newDefaultChunk() const;
    void dropDefaultData();

    std::unique_ptr<Member[]> mMembers;
    mutable std::atomic<char*> mDefaultData = nullptr; // owned; null until asked for, by whatever thread
    OwnedText mName;                                   // never null
    unsigned long long mTotalSize = 0;
    unsigned int mMemberCount = 0;
    bool mBeingDestroyed = false;
    std::vector<StringRun> mStrings; // known with the layout; a walk over the members takes three times as long
};
} // namespace vumo::Data
