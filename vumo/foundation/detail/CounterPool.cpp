#include "vumo/foundation/detail/CounterPool.h"

#include "vumo/foundation/detail/ThreadShard.h"

#include <mutex>
#include <new>

namespace vumo::detail
{
namespace
{
/// A counter in use. The counter stands first, so that its address is that of the whole.
struct UsedCounter
{
    Counter counter = 0;
    eRoom room;
};

static_assert(sizeof(UsedCounter) == sizeof(FreeCounter), "either takes the place of the other");

/// The free counters of one kind that no thread has at hand. Without constructors and destructors at run time, and its
/// slabs are never freed: static objects of any file use it.
struct Pool
{
    std::size_t counterSize;

    /// How many a thread with none at hand fetches, and how many it leaves to others when it has twice as many.
    std::size_t batch;

    std::mutex mutex{};
    FreeCounters free{};
    void* slabs = nullptr; ///< keeps them all reachable: each begins with the address of the one before
};

Pool thePools[kRooms] = {{sizeof(FreeCounter), 256}, {kCacheLine, 32}};

void push(FreeCounters& counters, void* place)
{
    counters.first = new (place) FreeCounter{counters.first};
    ++counters.size;
}

FreeCounter* pop(FreeCounters& counters)
{
    FreeCounter* const first = counters.first;
    counters.first = first->next;
    --counters.size;
    return first;
}

void move(FreeCounters& from, FreeCounters& to, std::size_t atMost)
{
    while (atMost-- > 0 && from.size > 0)
        push(to, pop(from));
}

void addSlab(Pool& pool)
{
    constexpr std::size_t kSlabSize = 128 * kCacheLine;
    char* const slab = static_cast<char*>(::operator new(kSlabSize, std::align_val_t(kCacheLine)));
    pool.slabs = new (slab) void*(pool.slabs);
    for (std::size_t offset = kCacheLine; offset < kSlabSize; offset += pool.counterSize)
        push(pool.free, slab + offset);
}

void fetch(Pool& pool, FreeCounters& counters, std::size_t atMost)
{
    const std::lock_guard<std::mutex> lock(pool.mutex);
    if (pool.free.size == 0)
        addSlab(pool);
    move(pool.free, counters, atMost);
}

void leaveBatch(Pool& pool, FreeCounters& counters)
{
    const std::lock_guard<std::mutex> lock(pool.mutex);
    move(counters, pool.free, pool.batch);
}
} // namespace

Counter* takeCounter(eRoom room)
{
    const auto kind = static_cast<std::size_t>(room);
    ThreadShard* const own = ThreadShard::own();
    FreeCounters single;
    FreeCounters& counters = own ? own->counters[kind] : single;
    if (counters.size == 0)
        fetch(thePools[kind], counters, own ? thePools[kind].batch : 1);
    return &(new (pop(counters)) UsedCounter{0, room})->counter;
}

void returnCounter(Counter* counter) noexcept
{
    const auto kind = static_cast<std::size_t>(reinterpret_cast<UsedCounter*>(counter)->room);
    ThreadShard* const own = ThreadShard::own();
    FreeCounters single;
    FreeCounters& counters = own ? own->counters[kind] : single;
    push(counters, counter);
    if (!own || counters.size >= 2 * thePools[kind].batch)
        leaveBatch(thePools[kind], counters);
}
} // namespace vumo::detail
