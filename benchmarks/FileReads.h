#pragma once

#include <cstdint>
#include <functional>

namespace bench
{
/// What the process read from files: calls such as read and pread, and the bytes that they gave.
struct FileReads
{
    std::uint64_t calls = 0;
    std::uint64_t bytes = 0;
};

/// What `work` read, by the kernel's count. What is mapped into memory does not count. Linux only.
FileReads readsDuring(const std::function<void()>& work);
} // namespace bench
