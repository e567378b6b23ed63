#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace vumo::detail
{
using Counter = std::atomic<std::int32_t>;

constexpr std::size_t kCacheLine = 64;

/// Where a counter lies: close to others, instead of in an allocation of 32 bytes, or in a cache line of its own, for
/// one that threads count in while they use others.
enum class eRoom : unsigned int
{
    kDense,
    kLine
};

constexpr std::size_t kRooms = 2;

/// A counter that holds 0. Throws `std::bad_alloc`.
///
/// Safe to use from several threads at once, and at any time from the first static object to the last.
Counter* takeCounter(eRoom room);

/// Gives back what takeCounter() gave, in any thread.
void returnCounter(Counter* counter) noexcept;

/// Room for a counter that is not in use.
struct FreeCounter
{
    FreeCounter* next;
};

/// The free counters that a thread has at hand, so that taking and returning one needs no lock.
struct FreeCounters
{
    FreeCounter* first = nullptr;
    std::size_t size = 0;
};
} // namespace vumo::detail
