#include "benchmarks/PeakMemory.h"

#include "benchmarks/Records.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

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

[[noreturn]] void workAndExit(const std::function<void()>& work, int pipe)
{
    int status = EXIT_FAILURE;
    try
    {
        const std::uint64_t before = highWaterMark();
        work();
        const std::uint64_t growth = highWaterMark() - before;
        if (write(pipe, &growth, sizeof(growth)) == sizeof(growth))
            status = EXIT_SUCCESS;
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(status);
}
} // namespace

std::uint64_t peakMemoryOf(const std::function<void()>& work)
{
    malloc_trim(0); // what was freed before, the work would find without asking the kernel
    int ends[2];
    if (pipe(ends) != 0)
        throw WrongResult("no pipe for a measurement");
    const pid_t child = fork();
    if (child == 0)
        workAndExit(work, ends[1]);
    close(ends[1]);
    std::uint64_t growth = 0;
    const bool isComplete = child > 0 && read(ends[0], &growth, sizeof(growth)) == sizeof(growth);
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    if (!isComplete)
        throw WrongResult("the memory of a process cannot be measured");
    return growth;
}
} // namespace bench
