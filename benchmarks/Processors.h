#pragma once

#include <vector>

namespace bench
{
/// The processors that the process might use when it first asked, in ascending order.
const std::vector<int>& allowedProcessors();

/// Keeps the calling thread, and those that it starts, on that processor: nothing pays for a move to another.
void pinTo(int processor);
} // namespace bench
