#pragma once

#include "vumo/data/ChannelImpl.h"
#include "vumo/data/ChannelIterator.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/Ref.h"

#include <string>

namespace vumo::Data
{
/// A named set of streams, each known by its own name: the data over one kind of component. The channel's
/// name says which, "vertex" or "face", say.
///
/// A Channel is a cheap front: copies share the streams, and a change made through one is seen by all.
/// Nothing copies on its own when modified; call makeUnique() before changing a channel that may be shared.
/// A `const` channel guards its own set of streams, not what others do to it.
/// Threads may use different channels at once, and read what they share; whoever changes that locks.
///
/// Walks and positions follow the names. Where a stream was renamed through another channel that shares it,
/// it keeps its place here until it is set again; looking it up by its new name finds it all the same.
class VUMO_EXPORT Channel : private Counted<Channel>
{
public:
    /// Named "Unnamed".
    Channel();
    explicit Channel(const std::string& name);
    Channel(const Channel& other) = default;
    Channel& operator=(const Channel& other);

    /// Says whether both share one implementation.
    bool operator==(const Channel& other) const { return mImpl.get() == other.mImpl.get(); }
    bool operator!=(const Channel& other) const { return !(*this == other); }

    /// Gives this channel streams, and elements, of its own when it is shared. Returns whether a stream had
    /// to be copied; an unshared channel is left alone, whatever its streams share.
    bool makeUnique();

    const std::string& name() const;

    /// Stores a copy that shares the stream's elements, in place of any stream of that name, and returns
    /// it. The channel owns it.
    Stream* setDataStream(const Stream& stream);

    /// The stream of that name, or the n-th in name order from 0, owned by the channel; null when there is
    /// none. Valid until it is replaced, removed or made unique.
    Stream* findDataStream(const std::string& name);
    const Stream* findDataStream(const std::string& name) const;
    Stream* dataStream(const std::string& name);
    const Stream* dataStream(const std::string& name) const;
    Stream* dataStream(unsigned int n);
    const Stream* dataStream(unsigned int n) const;

    /// The stream of that name, to be changed: neither it nor this channel's set of streams is shared afterwards. What
    /// is missing is made, a stream of a new, empty structure, for setStructure() to replace. Valid until it is
    /// replaced or removed.
    Stream& edit(const std::string& streamName);

    /// False when there was none.
    bool removeDataStream(const std::string& name);

    /// Renames the stream for all that share it. False when there is none of the old name. When the new name
    /// is taken: false, too, and the renamed stream is no longer in the channel.
    bool renameDataStream(const std::string& oldName, const std::string& newName);

    bool empty() const { return size() == 0; }
    unsigned int size() const;
    unsigned int dataStreamCount() const { return size(); }

    /// Sets an element of default values at the index in every stream of its index type. Returns whether at
    /// least one took it.
    bool addElement(const Index& index);

    /// Removes the element from every stream of its index type. Returns whether at least one had it.
    bool removeElement(const Index& index);

    ChannelIterator begin() const;
    ChannelIterator end() const;
    ChannelIterator cbegin() const { return begin(); }
    ChannelIterator cend() const { return end(); }

    static bool Debug(const Channel* object, vumo::Debug::Print& request);
    static bool Debug(const Channel* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class AssociationsImpl; // renames the channels that it holds
    friend class ChannelIterator;

    ChannelImpl* impl() const { return mImpl.get(); }

    Ref<ChannelImpl> mImpl; // never null
};
} // namespace vumo::Data
