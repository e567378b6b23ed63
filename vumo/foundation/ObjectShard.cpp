#include "vumo/foundation/ObjectShard.h"

#include "vumo/foundation/detail/ThreadShard.h"

namespace vumo
{
__thread ObjectShard* ObjectShard::theOwn = nullptr;

namespace
{
/// Counts for the threads that have no shard.
struct SharedShard
{
    std::atomic<unsigned long long> created[ObjectShard::kPlaces];
    std::atomic<unsigned long long> destroyed[ObjectShard::kPlaces];
};

SharedShard theShared; // zero from the first static object to the last
} // namespace

void ObjectShard::countElsewhere(unsigned int place, unsigned int created, unsigned int destroyed) noexcept
{
    if (detail::ThreadShard::own())
    {
        theOwn->mCreated[place] += created;
        theOwn->mDestroyed[place] += destroyed;
        return;
    }
    theShared.created[place] += created;
    theShared.destroyed[place] += destroyed;
}

unsigned long long ObjectShard::created(unsigned int place) noexcept
{
    unsigned long long sum = theShared.created[place];
    for (const detail::ThreadShard* shard = detail::ThreadShard::first(); shard; shard = shard->next())
        sum += shard->mCreated[place];
    return sum;
}

unsigned long long ObjectShard::alive(unsigned int place) noexcept
{
    // First the destroyed ones: all that are counted there are then among the created ones.
    unsigned long long destroyed = theShared.destroyed[place];
    for (const detail::ThreadShard* shard = detail::ThreadShard::first(); shard; shard = shard->next())
        destroyed += shard->mDestroyed[place];
    return created(place) - destroyed;
}
} // namespace vumo
