#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

namespace vumo::test
{
// Under the address sanitizer, which has an allocator of its own, allocations by `new` count, else all.

/// How many bytes this program has asked the allocator for so far, whatever became of them since.
std::size_t bytesAllocated();

/// The largest number of them at once, since resetLargestAllocation() was called.
std::size_t largestAllocation();
void resetLargestAllocation();

/// Has one allocation fail while it lives, as if there were no memory left for it. There is one at a time.
class FailingAllocation
{
public:
    /// The `n`-th from now on, counted from 0.
    explicit FailingAllocation(std::size_t n);
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
    ~FailingAllocation();

    /// Says whether it came.
    bool hasFailed() const;
};

/// Runs the action with one of its allocations failing, counted from 0, and tells whether it had so many. False when
/// the action says so or throws, which it does for lack of memory only.
template <class Action>
bool succeedsWithout(std::size_t allocation, bool& hasFailed, const Action& action)
{
    const FailingAllocation failing(allocation);
    bool isDone = false;
    try
    {
        isDone = action();
    }
    catch (const std::bad_alloc&)
    {
        EXPECT_TRUE(failing.hasFailed());
    }
    hasFailed = failing.hasFailed();
    return isDone;
}

/// Calls `test` with the number of each allocation, for succeedsWithout(), until that says that there are no more.
template <class Test>
void forEachAllocation(const Test& test)
{
    bool hasFailed = true;
    for (std::size_t n = 0; hasFailed && !testing::Test::HasFailure(); ++n)
    {
        SCOPED_TRACE(n);
        test(n, hasFailed);
    }
}
} // namespace vumo::test
