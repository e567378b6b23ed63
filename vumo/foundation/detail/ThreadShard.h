#pragma once

#include "vumo/foundation/ObjectShard.h"
#include "vumo/foundation/detail/CounterPool.h"
#include "vumo/foundation/detail/Namespace.h"

namespace vumo::detail
{
/// All that the library keeps for one thread, apart in memory from what it keeps for the others.
class alignas(kCacheLine) ThreadShard : public ObjectShard
{
public:
    /// The calling thread's, made or taken over from a thread that has ended with the first call. Null when there is no
    /// memory for one, and while the last objects of an ending thread go: after its other thread_local objects, or at
    /// the end of the program.
    static ThreadShard* own() noexcept;

    /// Any shard, and with next() all others, those without a thread included; null when there are none.
    static const ThreadShard* first() noexcept;
    const ThreadShard* next() const { return mNext; }

    FreeCounters counters[kRooms]; // by room

private:
    struct AtThreadEnd;

    static ThreadShard* give() noexcept;

    ThreadShard* mNext = nullptr;     // never freed, as nobody knows who still reads its numbers
    ThreadShard* mNextFree = nullptr; // of those without a thread
};
} // namespace vumo::detail
