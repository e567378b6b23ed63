#include "benchmarks/PeakMemory.h"

#include "benchmarks/ChildProcess.h"
#include "benchmarks/Records.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace bench
{
namespace
{
/// The greatest size that the process has had in memory, which starts anew with a process.
std::uint64_t highWaterMark()
{
    char text[4096] = {};
    const int file = open("/proc/self/status", O_RDONLY);
    const ssize_t size = file < 0 ? -1 : read(file, text, sizeof(text) - 1);
    close(file);
    const char* const line = size <= 0 ? nullptr : std::strstr(text, "VmHWM:");
    unsigned long long kibibytes = 0;
    if (!line || std::sscanf(line, "VmHWM: %llu kB", &kibibytes) != 1)
        throw WrongResult("the kernel does not tell how large the process is");
    return kibibytes * 1024;
}
} // namespace

std::uint64_t peakMemoryOf(const std::function<void()>& work)
{
    malloc_trim(0); // what was freed before, the work would find without asking the kernel
    const auto growth = [&] {
        const std::uint64_t before = highWaterMark();
        work();
        return highWaterMark() - before;
    };
    return inChildProcess(growth, "the memory of a process cannot be measured");
}
} // namespace bench
