#include "vumo/accessor/detail/File.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <clocale> // newlocale, which POSIX adds
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace vumo::Data::detail
{
namespace
{
/// Repeats a system call until no signal interrupts it.
template <class Call>
auto uninterrupted(const Call& call) -> decltype(call())
{
    for (;;)
    {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

int flagsFor(File::eMode mode)
{
    // Opening a pipe would wait for its other end, opening a terminal could make it this process's own.
    constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    switch (mode)
    {
    case File::eMode::kRead:
        return kAlways | O_RDONLY;
    case File::eMode::kUpdate:
        return kAlways | O_RDWR;
    case File::eMode::kReadRecord:
        return kAlways | O_RDONLY | O_NOFOLLOW;
    case File::eMode::kCreateRecord:
        return kAlways | O_WRONLY | O_NOFOLLOW | O_CREAT | O_EXCL;
    case File::eMode::kDirectory:
        return kAlways | O_RDONLY | O_DIRECTORY;
    }
    return kAlways;
}

struct stat statusOf(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
        status = {};
    return status;
}
} // namespace

File::File(const std::string& name, eMode mode)
{
    mDescriptor = uninterrupted([&] { return open(name.c_str(), flagsFor(mode), S_IRUSR | S_IWUSR); });
    if (!isOpen())
    {
        mError = errno; // before anything else sets it
        return;
    }
    const mode_t wanted = mode == eMode::kDirectory ? S_IFDIR : S_IFREG;
    if ((statusOf(mDescriptor).st_mode & S_IFMT) != wanted)
    {
        close(mDescriptor);
        mDescriptor = -1;
        mError = EINVAL; // it is there, but no file to read or write
    }
}

File::~File()
{
    if (isOpen())
        close(mDescriptor);
}

bool File::hasName(const std::string& name) const
{
    struct stat named = {};
    const struct stat opened = statusOf(mDescriptor);
    // Device and number tell files apart; names and contents do not.
    return stat(name.c_str(), &named) == 0 && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

std::uint64_t File::size() const
{
    return static_cast<std::uint64_t>(statusOf(mDescriptor).st_size);
}

bool File::allowsPosition(std::uint64_t position) const
{
    // The position of the file itself is used for nothing: reads and writes name their own.
    return lseek(mDescriptor, static_cast<off_t>(position), SEEK_SET) >= 0;
}

std::size_t File::read(std::uint64_t position, char* bytes, std::size_t count) const
{
    std::size_t done = 0;
    while (done < count)
    {
        const ssize_t got = uninterrupted(
            [&] { return pread(mDescriptor, bytes + done, count - done, static_cast<off_t>(position + done)); });
        if (got < 0)
            mError = errno;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool File::write(std::uint64_t position, const char* bytes, std::size_t count) const
{
    std::size_t done = 0;
    while (done < count)
    {
        const ssize_t written = uninterrupted(
            [&] { return pwrite(mDescriptor, bytes + done, count - done, static_cast<off_t>(position + done)); });
        if (written == 0)
            errno = ENOSPC; // nothing was taken, and no reason given: trying on could go on for ever
        if (written <= 0)
            return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

bool File::truncate(std::uint64_t size) const
{
    const bool isDone = uninterrupted([&] { return ftruncate(mDescriptor, static_cast<off_t>(size)); }) == 0;
    mError = isDone ? mError : errno;
    return isDone;
}

bool File::sync() const
{
    // Some file systems cannot sync a directory and say so.
    const bool isDone = uninterrupted([&] { return fsync(mDescriptor); }) == 0 || errno == EINVAL;
    mError = isDone ? mError : errno;
    return isDone;
}

bool File::tryLock() const
{
    // Any other error means that files here have no locks, as on some networks: that must not keep anybody from saving.
    return uninterrupted([&] { return flock(mDescriptor, LOCK_EX | LOCK_NB); }) == 0 || errno != EWOULDBLOCK;
}

void File::shareAs(const File& other) const
{
    const struct stat theirs = statusOf(other.mDescriptor);
    // Readers by group may read the record only if it belongs to their group; else its permissions mean another one.
    const bool hasItsGroup = statusOf(mDescriptor).st_gid == theirs.st_gid ||
                             fchown(mDescriptor, static_cast<uid_t>(-1), theirs.st_gid) == 0;
    constexpr mode_t kReadAndWrite = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    if (hasItsGroup && fchmod(mDescriptor, theirs.st_mode & kReadAndWrite) != 0)
        return; // it stays its owner's alone
}

bool File::hasOwnerOf(const File& other) const
{
    const uid_t owner = statusOf(mDescriptor).st_uid;
    return owner == statusOf(other.mDescriptor).st_uid || owner == geteuid() || owner == 0;
}

bool File::isSticky() const
{
    return (statusOf(mDescriptor).st_mode & S_ISVTX) != 0;
}

bool File::remove(const std::string& name)
{
    return uninterrupted([&] { return unlink(name.c_str()); }) == 0;
}

bool File::truncate(const std::string& name, std::uint64_t size)
{
    const auto offset = static_cast<off_t>(size);
    return offset >= 0 && static_cast<std::uint64_t>(offset) == size && ::truncate(name.c_str(), offset) == 0;
}

bool File::isAbsent(const std::string& name)
{
    struct stat ignored = {};
    return lstat(name.c_str(), &ignored) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

std::string File::realName(const std::string& name)
{
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(name.c_str(), nullptr), &std::free);
    if (!path && errno == ENOMEM)
        throw std::bad_alloc(); // there can be such a file, and a record of it, all the same
    return path ? path.get() : "";
}

std::string systemReason(int error)
{
    static const locale_t theEnglish = newlocale(LC_ALL_MASK, "C", nullptr);
    return error == 0 ? "" : strerror_l(error, theEnglish);
}

FileStamp::FileStamp(const std::string& name)
{
    struct stat status = {};
    if (stat(name.c_str(), &status) != 0)
        return;
    device = status.st_dev;
    number = status.st_ino;
    size = static_cast<std::uint64_t>(status.st_size);
    seconds = status.st_mtim.tv_sec;
    nanoseconds = status.st_mtim.tv_nsec;
}
} // namespace vumo::Data::detail
