#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstddef>

namespace vumo::test
{
/// Ends every write to a file at that length, like a full disk, while it lives.
class FullDisk
{
public:
    explicit FullDisk(std::size_t length) : mHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &mOld);
        const rlimit limit = {length, mOld.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &mOld);
        std::signal(SIGXFSZ, mHandler);
    }

private:
    void (*mHandler)(int);
    rlimit mOld = {};
};
} // namespace vumo::test
