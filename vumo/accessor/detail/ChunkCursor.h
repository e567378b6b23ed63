#pragma once

#include "vumo/accessor/BinaryChunkHeader.h"

#include <cstdint>
#include <istream>
#include <string>

namespace vumo::Data::detail
{
/// Walks over a row of chunks in a stream: readHeader(), then one of the functions that pass over the rest of
/// the chunk, until atEnd().
///
/// The row has a given length, which the stream is known to hold. What does not fit into it is refused before
/// anything of it is read, skipped or allocated; the walk cannot go on from there. Borrows the stream.
class ChunkCursor
{
public:
    /// The stream stands at the first chunk.
    ChunkCursor(std::istream& in, std::uint64_t length);

    bool atEnd() const { return mLeft == 0; }

    bool readHeader();

    /// Of the chunk whose header was read last.
    const BinaryChunkHeader& header() const { return mHeader; }

    bool skipData();
    bool readData(std::string& data);

    /// Appends the whole chunk as it stands in the stream, with reserved bytes and padding.
    bool appendChunk(std::string& bytes);

private:
    bool holdsData() const;

    /// Appends the next `size` bytes.
    bool append(std::uint64_t size, std::string& bytes);
    bool skip(std::uint64_t size);

    std::istream& mIn;
    std::uint64_t mLeft;
    std::string mHeaderBytes;
    BinaryChunkHeader mHeader;
};
} // namespace vumo::Data::detail
