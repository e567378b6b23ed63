#include "vumo/foundation/detail/CounterPool.h"

#include <mutex>
#include <new>

namespace vumo::detail
{
namespace
{
constexpr unsigned int kSlotsPerSlab = 1020; // a slab is just short of two pages

/// A counter in use, or a link of the list of those that are free.
union Slot
{
    Slot() : next(nullptr) {}

    Counter counter;
    Slot* next;
};

struct Slab
{
    Slab* next;
    Slot slots[kSlotsPerSlab];
};

// Without constructors and destructors at run time, and never freed: static objects of any file use them.
std::mutex theMutex;
Slab* theSlabs = nullptr; // keeps them all reachable
Slot* theFreeSlots = nullptr;

void addSlab()
{
    auto* const slab = new Slab;
    slab->next = theSlabs;
    theSlabs = slab;
    for (unsigned int i = kSlotsPerSlab; i-- > 0;)
    {
        slab->slots[i].next = theFreeSlots;
        theFreeSlots = &slab->slots[i];
    }
}
} // namespace

Counter* takeCounter()
{
    const std::lock_guard<std::mutex> lock(theMutex);
    if (!theFreeSlots)
        addSlab();
    Slot* const slot = theFreeSlots;
    theFreeSlots = slot->next;
    return new (&slot->counter) Counter(0);
}

void returnCounter(Counter* counter) noexcept
{
    const std::lock_guard<std::mutex> lock(theMutex);
    Slot* const slot = new (counter) Slot;
    slot->next = theFreeSlots;
    theFreeSlots = slot;
}
} // namespace vumo::detail
