#include "tests/accessor/FileCallScript.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <cerrno>
#include <climits>
#include <cstdarg>

namespace vumo::test
{
namespace
{
std::string kindOf(const std::string& path)
{
    const std::string ending = ".vumo-undo";
    struct stat status = {};
    if (path.size() > ending.size() && path.compare(path.size() - ending.size(), ending.size(), ending) == 0)
        return "record";
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? "directory" : "scene";
}

std::string pathOf(const FileCallScript::Target& target)
{
    if (target.mPath)
        return target.mPath;
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(target.mDescriptor);
    const ssize_t size = readlink(link.c_str(), path, sizeof(path));
    return std::string(path, size > 0 ? static_cast<std::size_t>(size) : 0);
}
} // namespace

FileCallScript::eAction FileCallScript::next(eCalls calls, const char* what, const Target& target, bool isWrite)
{
    FileCallScript* const script = current();
    if (!script || script->mCalls != calls)
        return kPass;
    const std::string entry = std::string(what) + " " + kindOf(pathOf(target));
    if (script->mLog.empty() || script->mLog.back() != entry)
        script->mLog.push_back(entry);
    if (script->hadItsTurn() && script->mExitLater > 0 && --script->mExitLater == 0)
        _exit(kExitCode);
    if (!script->mPlace.empty() && script->mPlace != entry)
        return kPass;
    ++script->mCount;
    if (script->mAction == kFailForGood && script->hadItsTurn())
        return kFail;
    if (script->mCount != script->mTurn)
        return kPass;
    if (script->mMeanwhile)
        script->mMeanwhile();
    const eAction action = script->mAction;
    if (action == kExit || (action == kExitHalfway && !isWrite))
        _exit(kExitCode);
    if (action == kFailHalfway && isWrite)
    {
        script->mAction = kFail;
        ++script->mTurn;
        return kShorten;
    }
    if (action == kFailHalfway)
        return kFail;
    return action == kShorten && !isWrite ? kPass : action;
}

namespace
{
using Script = FileCallScript;

int fail(Script::eAction action)
{
    errno = action == Script::kInterrupt ? EINTR : Script::current()->mError;
    return -1;
}

bool fails(Script::eAction action)
{
    return action == Script::kFail || action == Script::kInterrupt;
}

/// The result of a system call that has no bytes to count.
template <class Call>
int scripted(const char* what, const Script::Target& target, const Call& call, Script::eCalls calls = Script::kChanges)
{
    const Script::eAction action = Script::next(calls, what, target);
    return fails(action) ? fail(action) : static_cast<int>(call());
}
} // namespace
} // namespace vumo::test

using namespace vumo::test;

// The library finds these functions in front of those of the C library.
#pragma GCC visibility push(default)
extern "C"
{
    int open(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        const auto call = [&] { return syscall(SYS_openat, AT_FDCWD, path, flags, mode); };
        return (flags & O_CREAT) != 0 ? scripted("create", {path, -1}, call)
                                      : scripted("open", {path, -1}, call, Script::kOpens);
    }

    ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t position)
    {
        const auto action = Script::next(Script::kChanges, "write", {nullptr, descriptor}, true);
        if (fails(action))
            return fail(action);
        const size_t size = action == Script::kPass ? count : (count + 1) / 2;
        const ssize_t written = syscall(SYS_pwrite64, descriptor, bytes, size, position);
        if (action == Script::kExitHalfway)
            _exit(Script::kExitCode);
        return written;
    }

    ssize_t pread(int descriptor, void* bytes, size_t count, off_t position)
    {
        const auto action = Script::next(Script::kReads, "read", {nullptr, descriptor}, true);
        if (fails(action))
            return fail(action);
        return syscall(SYS_pread64, descriptor, bytes, action == Script::kPass ? count : (count + 1) / 2, position);
    }

    off_t lseek(int descriptor, off_t offset, int way) noexcept
    {
        const auto action = Script::next(Script::kSeeks, "seek", {nullptr, descriptor});
        return fails(action) ? fail(action) : syscall(SYS_lseek, descriptor, offset, way);
    }

    int ftruncate(int descriptor, off_t size) noexcept
    {
        return scripted("cut", {nullptr, descriptor}, [&] { return syscall(SYS_ftruncate, descriptor, size); });
    }

    int fsync(int descriptor)
    {
        return scripted("sync", {nullptr, descriptor}, [&] { return syscall(SYS_fsync, descriptor); });
    }

    int fchmod(int descriptor, mode_t mode) noexcept
    {
        return scripted("share", {nullptr, descriptor}, [&] { return syscall(SYS_fchmod, descriptor, mode); });
    }

    int unlink(const char* path) noexcept
    {
        return scripted("remove", {path, -1}, [&] { return syscall(SYS_unlinkat, AT_FDCWD, path, 0); });
    }
} // extern "C"
#pragma GCC visibility pop
