#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <istream>
#include <streambuf>
#include <string_view>

namespace vumo::detail
{
/// Reads a text where it lies in memory, and moves to any place in it.
class MemoryBuffer : public std::streambuf
{
public:
    /// Without a text until restart().
    MemoryBuffer() = default;

    /// Borrows the text.
    explicit MemoryBuffer(std::string_view text) { restart(text, 0, 0); }

    /// Takes a text, borrowed, in place of the one before; `offset` says which of its characters is read next.
    /// `position` is what that of its first character is called, for a text that is a part of a file; -1 when it is
    /// not known, and then none is told.
    void restart(std::string_view text, std::string_view::size_type offset, long long position);

protected:
    pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode which) override;
    pos_type seekpos(pos_type position, std::ios::openmode which) override;

private:
    off_type mPosition = 0; // of the first character
};

/// An input of a text in memory. Borrows it.
class MemoryInput : public std::istream
{
public:
    explicit MemoryInput(std::string_view text) : std::istream(nullptr), mBuffer(text) { rdbuf(&mBuffer); }

private:
    MemoryBuffer mBuffer;
};
} // namespace vumo::detail
