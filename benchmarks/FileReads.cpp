#include "benchmarks/FileReads.h"

#include "benchmarks/Records.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace bench
{
namespace
{
struct Count
{
    FileReads before;
    FileReads after; ///< with the call that fetched the count
};

Count currentCount()
{
    char text[512] = {};
    const int file = open("/proc/self/io", O_RDONLY);
    const ssize_t size = file < 0 ? -1 : read(file, text, sizeof(text) - 1);
    close(file);
    unsigned long long bytes = 0;
    unsigned long long calls = 0;
    if (size <= 0 || std::sscanf(text, "rchar: %llu wchar: %*u syscr: %llu", &bytes, &calls) != 2)
        throw WrongResult("the kernel does not tell what the process reads");
    return {{calls, bytes}, {calls + 1, bytes + static_cast<std::uint64_t>(size)}};
}
} // namespace

FileReads readsDuring(const std::function<void()>& work)
{
    const FileReads start = currentCount().after;
    work();
    const FileReads end = currentCount().before;
    return {end.calls - start.calls, end.bytes - start.bytes};
}
} // namespace bench
