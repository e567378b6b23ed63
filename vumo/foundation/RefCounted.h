#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <atomic>
#include <cstdint>

namespace vumo
{
/// An object that counts who refers to it and deletes itself when the last of them lets go.
///
/// A new object is at 0: nobody holds it yet. Whoever keeps it calls ref() and later unref(); the
/// unref() that takes the count from 1 to 0 deletes the object, which therefore has to be on the heap.
/// Anything that takes and releases a reference of its own on an object at 0 (an iterator or a
/// `Data::Handle` on a `Data::Structure`, say) deletes it on the way out, so hold it first:
///
///     Structure* structure = Structure::create();
///     structure->ref();
///     ... // use it
///     structure->unref();
///
/// Several threads may count at once; what else they do with a shared object is for the derived class to say.
class VUMO_EXPORT RefCounted
{
public:
    RefCounted();

    /// A copy is a new object that nobody holds: its count is 0.
    RefCounted(const RefCounted& other);

    /// Leaves the count alone: who holds an object does not change with its contents.
    RefCounted& operator=(const RefCounted& other);

    virtual ~RefCounted();

    void ref() const { mCount->fetch_add(1); }

    /// Releases one reference; deletes the object when it was the last one. A count that was not
    /// exactly 1 is only lowered, also below 0.
    void unref() const
    {
        if (mCount->fetch_sub(1) == 1)
            delete this;
    }

    int refCount() const { return mCount->load(); }

    /// Says whether two or more hold the object, so that whoever wants to change it alone must copy it.
    bool isShared() const { return refCount() >= 2; }

    static bool Debug(const RefCounted* object, vumo::Debug::Print& request);
    static bool Debug(const RefCounted* object, vumo::Debug::Footprint& request);

protected:
    /// Where the count lies in memory.
    enum eCountPlace : int
    {
        kBesideOthers,
        kApart ///< in a cache line of its own: for objects in which threads count while each uses its own
    };

    explicit RefCounted(eCountPlace place);

private:
    std::atomic<std::int32_t>* const mCount; // owned
};
} // namespace vumo
