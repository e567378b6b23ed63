#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <atomic>
#include <cstdint>

namespace vumo::detail
{
using Counter = std::atomic<std::int32_t>;

/// A counter that holds 0. Counters lie close together instead of taking an allocation of 32 bytes each. Throws
/// `std::bad_alloc`.
///
/// Safe to use from several threads at once, and at any time from the first static object to the last.
Counter* takeCounter();

/// Gives back what takeCounter() gave.
void returnCounter(Counter* counter) noexcept;
} // namespace vumo::detail
