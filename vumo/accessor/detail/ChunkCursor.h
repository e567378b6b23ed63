#pragma once

#include "vumo/accessor/BinaryChunkHeader.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// Walks over a row of chunks in a stream: readHeader(), then one of the functions that pass over the rest of
/// the chunk, until atEnd().
///
/// The row has a given length, which the stream is known to hold. What does not fit into it is refused before
/// anything of it is read, skipped or allocated; the walk cannot go on from there. Borrows the stream.
///
/// A short row is read in one request. Of a long one a window is held, so that a large chunk of the host is never
/// read when it is skipped; a smaller one for those who skip most of the chunks.
class ChunkCursor
{
public:
    static constexpr std::uint64_t kWindowToRead = 1 << 20;  ///< what is read stays in the cache, in few calls
    static constexpr std::uint64_t kWindowToSkip = 64 << 10; ///< many small chunks in one call, and little in vain

    /// The stream stands at the first chunk. As much as the window is read at once, unless a single chunk is longer.
    ChunkCursor(std::istream& in, std::uint64_t length, std::uint64_t windowSize);

    bool atEnd() const { return mLeft == 0; }

    bool readHeader();

    /// Of the chunk whose header was read last.
    const BinaryChunkHeader& header() const { return mHeader; }

    /// As it stands in the stream.
    std::string_view headerBytes() const { return mHeaderBytes; }

    /// Of its data and the padding after them.
    std::uint64_t paddedSize() const;

    bool skipData();

    /// Passes over the data, too, and gives the checksum of the header and them. A long chunk is not held.
    bool sumData(std::uint64_t& checksum);

    /// Gives the data where they were read to, until the next call.
    bool readData(std::string_view& data);

private:
    bool holdsData() const;

    /// Gives the next `size` bytes, until the next call.
    bool take(std::uint64_t size, std::string_view& bytes);
    bool fillWindow(std::uint64_t size);
    bool skip(std::uint64_t size);

    std::istream& mIn;
    std::uint64_t mLeft; // of the row, from the position in the window on
    std::uint64_t mWindowSize;
    std::string mWindow;
    std::size_t mPosition = 0; // in the window
    std::string mHeaderBytes;
    BinaryChunkHeader mHeader;
};
} // namespace vumo::Data::detail
