#pragma once

#include <cstdint>
#include <functional>

namespace bench
{
/// By how many bytes the memory of a process grows at most while it does the work; counted by the kernel, in a process
/// of its own. Memory that is asked for and never touched does not count. Throws `WrongResult` when the work fails.
/// Linux only.
std::uint64_t peakMemoryOf(const std::function<void()>& work);
} // namespace bench
