#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <atomic>

namespace vumo
{
/// An object that is stamped at each change from one process-wide counter.
///
/// A client that remembers a stamp can ask later whether this object, or any object of its class, has
/// changed since. Creating, copying, assigning and destroying an object are changes of its class. Objects may change
/// on several threads at once, each on one: no two changes get the same stamp.
class VUMO_EXPORT Checkpointed
{
public:
    Checkpointed();

    /// Counts as a construction and a change: the counter moves on by two.
    Checkpointed(const Checkpointed& other);

    /// A change of the target; the source's stamp is not copied.
    Checkpointed& operator=(const Checkpointed& other);

    /// The stamp of the last change of any object of the class.
    virtual unsigned long long classCheckpoint();
    virtual bool classChangedSinceCheckpoint(const unsigned long long& stamp);

    /// Marks the class as changed and returns the new stamp.
    virtual unsigned long long classChanged();

    virtual ~Checkpointed();

    /// Marks the object, and with it its class, as changed and returns the new stamp.
    unsigned long long objectChanged();

    unsigned long long checkpoint() const { return mCheckpoint; }

    /// Says whether the object changed after `stamp` was taken.
    bool changedSinceCheckpoint(const unsigned long long& stamp) const { return mCheckpoint > stamp; }

    static unsigned long long globalCheckpoint();

    /// Moves the counter on without marking any class as changed; returns its new value.
    static unsigned long long globalChange();

    static unsigned long long sClassCheckpoint();
    static bool sClassChangedSinceCheckpoint(const unsigned long long& stamp);
    static unsigned long long sClassChanged();

    static bool Debug(const Checkpointed* object, vumo::Debug::Print& request);
    static bool Debug(const Checkpointed* object, vumo::Debug::Footprint& request);

private:
    unsigned long long mCheckpoint;

    /// Marks the class as changed at that stamp, unless it was later already; returns the stamp.
    static unsigned long long classChangedAt(unsigned long long stamp);

    static std::atomic<unsigned long long> sfGlobalCheckpoint;
    static std::atomic<unsigned long long> sfCheckpoint;
};
} // namespace vumo
