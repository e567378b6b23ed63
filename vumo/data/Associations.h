#pragma once

#include "vumo/data/AssociationsImpl.h"
#include "vumo/data/AssociationsIterator.h"
#include "vumo/data/Channel.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/Ref.h"

#include <string>

namespace vumo::Data
{
/// All metadata of one scene object: a set of channels, each known by its name.
///
/// An Associations is a cheap front: copies share the channels, and a change made through one is seen by
/// all. Nothing copies on its own when modified; call makeUnique() before changing what may be shared.
/// Threads may use different objects at once, and read what they share; whoever changes that locks.
///
/// Walks and positions follow the names. Where a channel was renamed through another object that shares it,
/// it keeps its place here until it is set again; looking it up by its new name finds it all the same.
class VUMO_EXPORT Associations : private Counted<Associations>
{
public:
    Associations();

    /// Shares the other's channels; null means none.
    explicit Associations(const Associations* other);

    /// A new, empty object, owned by the caller.
    static Associations* create();

    /// Gives this object channels, streams and elements of its own when it is shared. Returns whether a
    /// stream had to be copied; an unshared object is left alone, whatever its channels share.
    bool makeUnique();

    /// The channel of that name, sharing the stored one; made and stored when there is none.
    Channel channel(const std::string& name);

    /// The stored channel or null; never makes one. Valid until it is replaced or removed.
    Channel* findChannel(const std::string& name);
    const Channel* findChannel(const std::string& name) const;

    /// The stream of that name in the channel of that name, to be changed: nobody else shares it, nor the channel, nor
    /// this object's set of channels; what was shared is copied, and nothing beside it. What is missing is made, a
    /// stream of a new, empty structure, for setStructure() to replace. Valid until the stream is replaced or removed.
    Stream& edit(const std::string& channelName, const std::string& streamName);

    /// Stores the channel under its own name, in place of any channel of that name.
    void setChannel(Channel channel);

    /// False when there was none.
    bool removeChannel(const std::string& name);

    /// Renames the channel for all that share it. False, with nothing changed, when there is none of the
    /// old name or one, be it the same, of the new one.
    bool renameChannel(const std::string& oldName, const std::string& newName);

    bool empty() const { return size() == 0; }
    unsigned int size() const;
    unsigned int channelCount() const { return size(); }

    /// The n-th channel in name order, counted from 0, owned by this object; null when there is none.
    Channel* operator[](unsigned int n) const;

    /// The same by value; a new channel named "Unnamed", which is not stored, when there is none.
    Channel channelAt(unsigned int n) const;

    AssociationsIterator begin() const;
    AssociationsIterator end() const;
    AssociationsIterator cbegin() const { return begin(); }
    AssociationsIterator cend() const { return end(); }

    static bool Debug(const Associations* object, vumo::Debug::Print& request);
    static bool Debug(const Associations* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class AssociationsIterator;

    const AssociationsImpl* impl() const { return mImpl.get(); }

    Ref<AssociationsImpl> mImpl; // never null
};
} // namespace vumo::Data
