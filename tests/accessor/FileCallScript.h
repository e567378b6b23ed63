#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

namespace vumo::test
{
/// Stands between the library and the system's calls on files, in this program: counts them, notes what they do, and
/// ends the process or lets a call fail when its turn comes. One source file of a program includes this.
struct FileCallScript
{
    enum eCalls
    {
        kChanges, ///< all that can change a file or a directory
        kSeeks,
        kReads
    };

    enum eAction
    {
        kPass,
        kExit,        ///< before the call
        kExitHalfway, ///< a write has written half of its bytes
        kFail,        ///< with mError
        kFailForGood, ///< this call and all that follow
        kFailHalfway, ///< a write writes half of its bytes, the call that completes it fails
        kShorten,     ///< a write writes half of its bytes
        kInterrupt    ///< by a signal, once
    };

    static constexpr int kExitCode = 77;

    eCalls mCalls = kChanges;
    int mTurn = 0; // counted from 1; 0: never
    eAction mAction = kPass;
    int mError = 0;

    int mCount = 0;
    std::vector<std::string> mLog; // what was done, and to which kind of file; repetitions once

    /// The script in force; none when null.
    static FileCallScript*& current()
    {
        static FileCallScript* theScript = nullptr;
        return theScript;
    }

    bool hadItsTurn() const { return mTurn > 0 && mCount >= mTurn; }

    /// Says what to do with a call; `isWrite` for one that may be done by half.
    static eAction next(eCalls calls, const char* what, const std::string& target, bool isWrite = false)
    {
        FileCallScript* const script = current();
        if (!script || script->mCalls != calls)
            return kPass;
        const std::string entry = std::string(what) + " " + kindOf(target);
        if (script->mLog.empty() || script->mLog.back() != entry)
            script->mLog.push_back(entry);
        ++script->mCount;
        if (script->mAction == kFailForGood && script->hadItsTurn())
            return kFail;
        if (script->mCount != script->mTurn)
            return kPass;
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

    static int fail(eAction action)
    {
        errno = action == kInterrupt ? EINTR : current()->mError;
        return -1;
    }

    static bool fails(eAction action) { return action == kFail || action == kInterrupt; }

    static std::string kindOf(const std::string& path)
    {
        const std::string ending = ".vumo-undo";
        struct stat status = {};
        if (path.size() > ending.size() && path.compare(path.size() - ending.size(), ending.size(), ending) == 0)
            return "record";
        return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? "directory" : "scene";
    }

    static std::string pathOf(int descriptor)
    {
        char path[PATH_MAX];
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        const ssize_t size = readlink(link.c_str(), path, sizeof(path));
        return std::string(path, size > 0 ? static_cast<std::size_t>(size) : 0);
    }

    /// Puts a script in force while it lives.
    class Use
    {
    public:
        explicit Use(FileCallScript& script) { current() = &script; }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() { current() = nullptr; }
    };
};

/// The result of a system call that has no bytes to count.
template <class Call>
int scripted(const char* what, const std::string& target, const Call& call)
{
    const FileCallScript::eAction action = FileCallScript::next(FileCallScript::kChanges, what, target);
    return FileCallScript::fails(action) ? FileCallScript::fail(action) : static_cast<int>(call());
}
} // namespace vumo::test

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
        return (flags & O_CREAT) != 0 ? vumo::test::scripted("create", path, call) : static_cast<int>(call());
    }

    ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t position)
    {
        using Script = vumo::test::FileCallScript;
        const auto action = Script::next(Script::kChanges, "write", Script::pathOf(descriptor), true);
        if (Script::fails(action))
            return Script::fail(action);
        const size_t size = action == Script::kPass ? count : count / 2;
        const ssize_t written = syscall(SYS_pwrite64, descriptor, bytes, size, position);
        if (action == Script::kExitHalfway)
            _exit(Script::kExitCode);
        return written;
    }

    ssize_t pread(int descriptor, void* bytes, size_t count, off_t position)
    {
        using Script = vumo::test::FileCallScript;
        const auto action = Script::next(Script::kReads, "read", Script::pathOf(descriptor), true);
        if (Script::fails(action))
            return Script::fail(action);
        return syscall(SYS_pread64, descriptor, bytes, action == Script::kPass ? count : (count + 1) / 2, position);
    }

    off_t lseek(int descriptor, off_t offset, int way) noexcept
    {
        using Script = vumo::test::FileCallScript;
        const auto action = Script::next(Script::kSeeks, "seek", Script::pathOf(descriptor));
        return Script::fails(action) ? Script::fail(action) : syscall(SYS_lseek, descriptor, offset, way);
    }

    int ftruncate(int descriptor, off_t size) noexcept
    {
        return vumo::test::scripted("cut", vumo::test::FileCallScript::pathOf(descriptor),
                                    [&] { return syscall(SYS_ftruncate, descriptor, size); });
    }

    int fsync(int descriptor)
    {
        return vumo::test::scripted("sync", vumo::test::FileCallScript::pathOf(descriptor),
                                    [&] { return syscall(SYS_fsync, descriptor); });
    }

    int fchmod(int descriptor, mode_t mode) noexcept
    {
        return vumo::test::scripted("share", vumo::test::FileCallScript::pathOf(descriptor),
                                    [&] { return syscall(SYS_fchmod, descriptor, mode); });
    }

    int unlink(const char* path) noexcept
    {
        return vumo::test::scripted("remove", path, [&] { return syscall(SYS_unlinkat, AT_FDCWD, path, 0); });
    }
} // extern "C"
#pragma GCC visibility pop
