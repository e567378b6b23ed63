#pragma once

#include "vumo/data/IterLocation.h"
#include "vumo/data/Member.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
class Structure;

/// Walks the members of a structure in order.
///
/// References the structure for as long as it lives, so a structure that nobody else holds dies with
/// its last iterator: ref() a new structure before iterating over it.
class VUMO_EXPORT StructureIterator
{
public:
    /// At the end of a new, empty structure of its own.
    StructureIterator();
    StructureIterator(const Structure& structure, IterLocation location);
    StructureIterator(const StructureIterator& other);
    StructureIterator& operator=(const StructureIterator& other);
    ~StructureIterator();

    /// The member at the position, owned by the structure, to be read only: a structure does not notice when its
    /// members are changed through an iterator. Throws `std::out_of_range` at the end.
    Member& operator*();
    const Member& operator*() const;
    Member* operator->();
    const Member* operator->() const;

    /// Steps to the next member; stays at the end.
    StructureIterator& operator++();

    /// Leaves the iterator where it is and returns a copy of it; loops advance with the prefix form.
    StructureIterator operator++(int);

    bool operator==(const StructureIterator& other) const;
    bool operator!=(const StructureIterator& other) const { return !(*this == other); }

    /// The position, counted from 0; 4294967295 at the end.
    unsigned int index() const { return mIndex; }

    /// Never null; alive for as long as the iterator.
    const Structure* structure() const { return mStructure; }

    /// Says whether the iterator is not at the end.
    bool valid() const;

    static bool Debug(const StructureIterator* object, vumo::Debug::Print& request);
    static bool Debug(const StructureIterator* object, vumo::Debug::Footprint& request);

private:
    /// The member at the position or null.
    Member* member() const;

    unsigned int mIndex;
    const Structure* mStructure;
};
} // namespace vumo::Data
