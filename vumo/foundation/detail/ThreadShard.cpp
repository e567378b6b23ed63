#include "vumo/foundation/detail/ThreadShard.h"

#include <mutex>
#include <new>

namespace vumo::detail
{
namespace
{
// Without constructors and destructors at run time: static objects of any file use them.
std::mutex theMutex;
std::atomic<ThreadShard*> theShards = nullptr;
ThreadShard* theFreeShards = nullptr;

thread_local bool hasEnded = false; // stays when the thread's objects with destructors are gone
} // namespace

/// Sets the shard of a thread free.
struct ThreadShard::AtThreadEnd
{
    AtThreadEnd() = default;
    AtThreadEnd(const AtThreadEnd&) = delete;
    AtThreadEnd& operator=(const AtThreadEnd&) = delete;

    ~AtThreadEnd()
    {
        hasEnded = true; // what is destroyed later must not take another one, which nobody would set free
        auto* const ended = static_cast<ThreadShard*>(theOwn);
        theOwn = nullptr;
        const std::lock_guard<std::mutex> lock(theMutex);
        ended->mNextFree = theFreeShards;
        theFreeShards = ended;
    }
};

ThreadShard* ThreadShard::own() noexcept
{
    if (!theOwn && !hasEnded)
        theOwn = give();
    return static_cast<ThreadShard*>(theOwn);
}

ThreadShard* ThreadShard::give() noexcept
{
    const std::lock_guard<std::mutex> lock(theMutex);
    ThreadShard* shard = theFreeShards;
    if (shard)
    {
        theFreeShards = shard->mNextFree;
    }
    else
    {
        shard = new (std::nothrow) ThreadShard;
        if (!shard)
            return nullptr;
        shard->mNext = theShards;
        theShards = shard;
    }
    // Being thread_local, it keeps the library from being unloaded before the thread has ended.
    static thread_local const AtThreadEnd theEnd;
    return shard;
}

const ThreadShard* ThreadShard::first() noexcept
{
    return theShards;
}
} // namespace vumo::detail
