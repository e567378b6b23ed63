#include "tests/support/Allocations.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <limits>
#include <new>

namespace
{
constexpr std::size_t kNever = std::numeric_limits<std::size_t>::max();

std::atomic<std::size_t> theBytesAllocated = 0;
std::atomic<std::size_t> theLargestAllocation = 0; // by tests of one thread only

/// How many allocations succeed before one fails. For tests of one thread only.
std::atomic<std::size_t> theAllocationsLeft = kNever;

/// Counts an allocation, and says whether it is to succeed.
bool admit(std::size_t size)
{
    theBytesAllocated += size;
    theLargestAllocation = std::max(size, theLargestAllocation.load());
    const bool fails = theAllocationsLeft == 0;
    if (theAllocationsLeft != kNever)
        --theAllocationsLeft; // beyond 0 that is kNever: only one fails
    if (fails)
        errno = ENOMEM;
    return !fails;
}
} // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Not inlined: g++ would see malloc's block given to delete, and warn.
[[gnu::noinline]] void* operator new(std::size_t size)
{
    void* const block = admit(size) ? std::malloc(size > 0 ? size : 1) : nullptr;
    if (!block)
        throw std::bad_alloc();
    return block;
}

[[gnu::noinline]] void operator delete(void* block) noexcept
{
    std::free(block);
}

[[gnu::noinline]] void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}
#else
// In the place of the C library's, which all others end in, `new` included.
#pragma GCC visibility push(default)
extern "C"
{
    void* __libc_malloc(std::size_t size);                          // NOLINT(bugprone-reserved-identifier)
    void* __libc_calloc(std::size_t count, std::size_t size);       // NOLINT(bugprone-reserved-identifier)
    void* __libc_realloc(void* block, std::size_t size);            // NOLINT(bugprone-reserved-identifier)
    void* __libc_memalign(std::size_t alignment, std::size_t size); // NOLINT(bugprone-reserved-identifier)

    void* malloc(std::size_t size) noexcept
    {
        return admit(size) ? __libc_malloc(size) : nullptr;
    }

    void* calloc(std::size_t count, std::size_t size) noexcept
    {
        return admit(count * size) ? __libc_calloc(count, size) : nullptr;
    }

    void* realloc(void* block, std::size_t size) noexcept
    {
        return admit(size) ? __libc_realloc(block, size) : nullptr;
    }

    void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
    {
        return admit(size) ? __libc_memalign(alignment, size) : nullptr;
    }
} // extern "C"
#pragma GCC visibility pop
#endif

namespace vumo::test
{
std::size_t bytesAllocated()
{
    return theBytesAllocated;
}

std::size_t largestAllocation()
{
    return theLargestAllocation;
}

void resetLargestAllocation()
{
    theLargestAllocation = 0;
}

FailingAllocation::FailingAllocation(std::size_t n)
{
    theAllocationsLeft = n;
}

FailingAllocation::~FailingAllocation()
{
    theAllocationsLeft = kNever;
}

bool FailingAllocation::hasFailed() const
{
    return theAllocationsLeft == kNever;
}
} // namespace vumo::test
