#pragma once

#include "vumo/data/ChannelIteratorImpl.h"
#include "vumo/data/IterLocation.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
class Channel;

/// Walks the streams of a channel in name order. Must not outlive the channel's implementation; removing
/// the stream at its position invalidates it.
class VUMO_EXPORT ChannelIterator
{
public:
    ChannelIterator(const Channel& channel, IterLocation location);

    /// The stream at the position, owned by the channel. Throws `std::out_of_range` at the end.
    Stream* operator*() const;
    Stream* operator->();
    const Stream* operator->() const;

    /// Steps to the next stream; stays at the end.
    ChannelIterator& operator++();

    /// Leaves the iterator where it is and returns a copy of it; loops advance with the prefix form.
    ChannelIterator operator++(int);

    bool operator==(const ChannelIterator& other) const { return mImpl == other.mImpl; }
    bool operator!=(const ChannelIterator& other) const { return mImpl != other.mImpl; }

    /// Says whether the iterator is not at the end.
    bool valid() const { return mImpl.valid(); }

    static bool Debug(const ChannelIterator* object, vumo::Debug::Print& request);
    static bool Debug(const ChannelIterator* object, vumo::Debug::Footprint& request);

private:
    /// The stream at the position; throws `std::out_of_range`, naming the operation, at the end.
    Stream* current(const char* operation) const;

    ChannelIteratorImpl mImpl;
};
} // namespace vumo::Data
