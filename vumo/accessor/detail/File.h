#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vumo::Data::detail
{
/// An open regular file, by the calls of the system: nothing is read ahead, nothing waits in a buffer.
class File
{
public:
    enum class eMode
    {
        kRead,
        kUpdate
    };

    /// Opens the file; isOpen() says whether that worked. What is no regular file is not opened, nor waited for.
    File(const std::string& name, eMode mode);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File();

    bool isOpen() const { return mDescriptor >= 0; }

    /// In bytes; 0 on failure.
    std::uint64_t size() const;

    /// Says whether a file here can have that position at all.
    bool allowsPosition(std::uint64_t position) const;

    /// Reads up to `count` bytes at `position` and returns how many there were.
    std::size_t read(std::uint64_t position, char* bytes, std::size_t count) const;

private:
    int mDescriptor;
};
} // namespace vumo::Data::detail
