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
    bool isApart = false;
};

static_assert(sizeof(UsedCounter) == sizeof(FreeCounter), "either takes the place of the other");

constexpr std::size_t kPerSlab = 1020; // a slab is just short of two pages

struct Slab
{
    Slab* next;
    FreeCounter counters[kPerSlab];
};

/// How many a thread with none at hand fetches, and how many it leaves to others when it has twice as many.
constexpr std::size_t kBatch = 256;

// Without constructors and destructors at run time, and never freed: static objects of any file use them.
std::mutex theMutex;
Slab* theSlabs = nullptr; // keeps them all reachable
FreeCounters theFreeCounters;

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

void addSlab()
{
    auto* const slab = new Slab;
    slab->next = theSlabs;
    theSlabs = slab;
    for (FreeCounter& counter : slab->counters)
        push(theFreeCounters, &counter);
}

void fetch(FreeCounters& counters, std::size_t atMost)
{
    const std::lock_guard<std::mutex> lock(theMutex);
    if (theFreeCounters.size == 0)
        addSlab();
    move(theFreeCounters, counters, atMost);
}

void leaveBatch(FreeCounters& counters)
{
    const std::lock_guard<std::mutex> lock(theMutex);
    move(counters, theFreeCounters, kBatch);
}
} // namespace

Counter* takeCounter()
{
    ThreadShard* const own = ThreadShard::own();
    FreeCounters single;
    FreeCounters& counters = own ? own->counters : single;
    if (counters.size == 0)
        fetch(counters, own ? kBatch : 1);
    return &(new (pop(counters)) UsedCounter)->counter;
}

Counter* takeCounterApart()
{
    void* const line = ::operator new(kCacheLine, std::align_val_t(kCacheLine));
    return &(new (line) UsedCounter{0, true})->counter;
}

void returnCounter(Counter* counter) noexcept
{
    if (reinterpret_cast<UsedCounter*>(counter)->isApart)
        return ::operator delete(counter, std::align_val_t(kCacheLine));
    ThreadShard* const own = ThreadShard::own();
    FreeCounters single;
    FreeCounters& counters = own ? own->counters : single;
    push(counters, counter);
    if (!own || counters.size >= 2 * kBatch)
        leaveBatch(counters);
}
} // namespace vumo::detail
