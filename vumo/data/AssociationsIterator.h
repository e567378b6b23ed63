#pragma once

#include "vumo/data/AssociationsIteratorImpl.h"
#include "vumo/data/IterLocation.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
class Associations;

/// Walks the channels of an associations object in name order. Must not outlive its implementation;
/// removing the channel at its position invalidates it.
class VUMO_EXPORT AssociationsIterator
{
public:
    AssociationsIterator(const Associations& associations, IterLocation location);

    /// The channel at the position, owned by the associations. Throws `std::out_of_range` at the end.
    Channel& operator*() const;
    Channel* operator->();
    const Channel* operator->() const;

    /// Steps to the next channel; stays at the end.
    AssociationsIterator& operator++();

    /// Leaves the iterator where it is and returns a copy of it; loops advance with the prefix form.
    AssociationsIterator operator++(int);

    bool operator==(const AssociationsIterator& other) const { return mImpl == other.mImpl; }
    bool operator!=(const AssociationsIterator& other) const { return mImpl != other.mImpl; }

    /// Says whether the iterator is not at the end.
    bool valid() const { return mImpl.valid(); }

    static bool Debug(const AssociationsIterator* object, vumo::Debug::Print& request);
    static bool Debug(const AssociationsIterator* object, vumo::Debug::Footprint& request);

private:
    /// The channel at the position; throws `std::out_of_range`, naming the operation, at the end.
    Channel& current(const char* operation) const;

    AssociationsIteratorImpl mImpl;
};
} // namespace vumo::Data
