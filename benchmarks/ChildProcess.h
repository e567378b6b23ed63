#pragma once

#include "benchmarks/Records.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <type_traits>

namespace bench
{
/// Calls `work` in a process of its own, which begins with this one's memory, and gives what it returns. Throws
/// `WrongResult` with `fault` when the process does not finish; what it throws itself goes to the standard error.
template <class Work>
auto inChildProcess(const Work& work, const std::string& fault) -> decltype(work())
{
    using Result = decltype(work());
    static_assert(std::is_trivially_copyable_v<Result>);

    int ends[2];
    if (pipe(ends) != 0)
        throw WrongResult("no pipe for a measurement");
    const pid_t child = fork();
    if (child == 0)
    {
        int status = EXIT_FAILURE;
        try
        {
            const Result result = work();
            if (write(ends[1], &result, sizeof(result)) == sizeof(result))
                status = EXIT_SUCCESS;
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "%s\n", error.what());
        }
        _exit(status); // what the parent has opened or promised to do at its end is not this process's
    }
    close(ends[1]);
    Result result{};
    const bool isComplete = child > 0 && read(ends[0], &result, sizeof(result)) == sizeof(result);
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    if (!isComplete)
        throw WrongResult(fault);
    return result;
}
} // namespace bench
