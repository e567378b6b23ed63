#pragma once

#include "vumo/foundation/Export.h"

#include <atomic>

namespace vumo
{
/// How many objects of each class one thread has made and destroyed.
///
/// Each thread counts in a shard of its own, which costs what counting costs without threads, and loses nothing. The
/// sums over all shards are the numbers of objects. A shard outlives its thread and goes with its numbers to the next
/// one that needs one, so that there are never more shards than there were threads at one time.
class VUMO_EXPORT ObjectShard
{
public:
    ObjectShard() = default;
    ObjectShard(const ObjectShard&) = delete;
    ObjectShard& operator=(const ObjectShard&) = delete;

    /// The number of counted classes. Each has a place of its own below it.
    static constexpr unsigned int kPlaces = 14;

    /// Count for the calling thread.
    static void countCreated(unsigned int place) noexcept
    {
        if (theOwn)
            raise(theOwn->mCreated[place]);
        else
            countElsewhere(place, 1, 0);
    }

    static void countDestroyed(unsigned int place) noexcept
    {
        if (theOwn)
            raise(theOwn->mDestroyed[place]);
        else
            countElsewhere(place, 0, 1);
    }

    /// The sums over all threads, exact while no other thread counts.
    static unsigned long long created(unsigned int place) noexcept;
    static unsigned long long alive(unsigned int place) noexcept;

protected:
    ~ObjectShard() = default;

    // Null before the thread's first count and after its last destructor. One pointer of the kind of memory that costs
    // no call, and of which plug-ins that are loaded later find little left. Not thread_local: that would check at each
    // use, by a call, whether another file has to initialise it first.
    static __thread ObjectShard* theOwn __attribute__((tls_model("initial-exec")));

private:
    using Number = std::atomic<unsigned long long>;

    /// Only the thread itself changes its numbers. In this order of memory nobody sees an object destroyed that he
    /// does not see created.
    static void raise(Number& number) noexcept
    {
        number.store(number.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }

    /// The same for a thread that has no shard: gives it one, or counts in one that all such threads share.
    static void countElsewhere(unsigned int place, unsigned int created, unsigned int destroyed) noexcept;

    Number mCreated[kPlaces] = {};
    Number mDestroyed[kPlaces] = {};
};
} // namespace vumo
