#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vumo::Data::detail
{
/// An open file, by the calls of the system: nothing is read ahead, nothing waits in a buffer. Calls that a signal
/// interrupts are made again, and what they do in part is completed.
class File
{
public:
    enum class eMode
    {
        kRead,
        kUpdate,
        kReadRecord,   ///< not through a symbolic link
        kCreateRecord, ///< to write it; it must not be there, and nobody else may read it
        kDirectory     ///< to sync() it
    };

    /// Opens the file; isOpen() says whether that worked. What is no regular file, or no directory, is not opened, nor
    /// waited for.
    File(const std::string& name, eMode mode);
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Closes the file, which ends its lock.
    ~File();

    bool isOpen() const { return mDescriptor >= 0; }

    /// `errno` of the last call on this file that failed, opening it among them; 0 when none did. Does not tell of
    /// positions that are not allowed.
    int error() const { return mError; }

    /// Says whether the name leads to this file still.
    bool hasName(const std::string& name) const;

    /// In bytes; 0 on failure.
    std::uint64_t size() const;

    /// Says whether a file here can have that position at all.
    bool allowsPosition(std::uint64_t position) const;

    /// Reads up to `count` bytes at `position` and returns how many there were.
    std::size_t read(std::uint64_t position, char* bytes, std::size_t count) const;

    bool write(std::uint64_t position, const char* bytes, std::size_t count) const;
    bool truncate(std::uint64_t size) const;

    /// Waits until the file is on the disk, as far as its file system can tell.
    bool sync() const;

    /// Takes the lock for writers. False when another open file has it; true also where files cannot be locked.
    bool tryLock() const;

    /// Lets all those read the file who may read the other one, as far as this process can do that.
    void shareAs(const File& other) const;

    /// Says whether the file belongs to whom the other one belongs to, or to this process, or to the administrator.
    bool hasOwnerOf(const File& other) const;

    /// Says whether only its owner may remove a file from the directory.
    bool isSticky() const;

    static bool remove(const std::string& name);

    /// Cuts, or extends with zero bytes, the file of that name.
    static bool truncate(const std::string& name, std::uint64_t size);

    /// Says whether there is nothing of that name, not even a symbolic link that leads nowhere. Opens nothing: a
    /// process that can open no more files sees what is there all the same.
    static bool isAbsent(const std::string& name);

    /// The name without symbolic links, from the root on; empty when there is no such file.
    static std::string realName(const std::string& name);

private:
    int mDescriptor;
    mutable int mError = 0;
};

/// What the system says about that value of `errno`, in English whatever the locale is; empty for 0.
std::string systemReason(int error);

/// What shows that a file was written to, or that a name leads to another file. All zero when there is none.
struct FileStamp
{
    explicit FileStamp(const std::string& name);

    std::uint64_t device = 0;
    std::uint64_t number = 0; ///< of the file on its device
    std::uint64_t size = 0;
    std::int64_t seconds = 0; ///< of the last change, with the nanoseconds
    std::int64_t nanoseconds = 0;
};
} // namespace vumo::Data::detail
