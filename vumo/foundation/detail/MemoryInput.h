#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <istream>
#include <streambuf>
#include <string_view>

namespace vumo::detail
{
/// Reads bytes where they lie in memory, and moves to any place in them.
class MemoryBuffer : public std::streambuf
{
public:
    /// Borrows the bytes.
    explicit MemoryBuffer(std::string_view bytes);

protected:
    pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode which) override;
    pos_type seekpos(pos_type position, std::ios::openmode which) override;
};

/// An input of bytes in memory. Borrows them.
class MemoryInput : public std::istream
{
public:
    explicit MemoryInput(std::string_view bytes) : std::istream(nullptr), mBuffer(bytes) { rdbuf(&mBuffer); }

private:
    MemoryBuffer mBuffer;
};
} // namespace vumo::detail
