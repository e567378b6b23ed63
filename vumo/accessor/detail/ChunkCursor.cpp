#include "vumo/accessor/detail/ChunkCursor.h"

#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/BinaryLayout.h"

namespace vumo::Data::detail
{
namespace
{
/// Below this, reading on is cheaper than a seek, which empties the stream's buffer.
constexpr std::uint64_t kShortestSeek = 65536;
} // namespace

ChunkCursor::ChunkCursor(std::istream& in, std::uint64_t length) : mIn(in), mLeft(length) {}

bool ChunkCursor::readHeader()
{
    mHeaderBytes.clear();
    if (mLeft < kHeaderSize || !append(kHeaderSize, mHeaderBytes))
        return false;
    mHeader.mTag.assign(mHeaderBytes, 0, kTagSize);
    mHeader.mSize = readBigEndian<std::uint64_t>(mHeaderBytes.data() + kSizeOffset);
    return true;
}

bool ChunkCursor::skipData()
{
    return holdsData() && skip(mHeader.mSize + paddingOf(mHeader.mSize));
}

bool ChunkCursor::readData(std::string& data)
{
    data.clear();
    return holdsData() && append(mHeader.mSize, data) && skip(paddingOf(mHeader.mSize));
}

bool ChunkCursor::appendChunk(std::string& bytes)
{
    if (!holdsData())
        return false;
    bytes += mHeaderBytes;
    return append(mHeader.mSize + paddingOf(mHeader.mSize), bytes);
}

bool ChunkCursor::holdsData() const
{
    return mHeader.mSize <= mLeft && paddingOf(mHeader.mSize) <= mLeft - mHeader.mSize;
}

bool ChunkCursor::append(std::uint64_t size, std::string& bytes)
{
    const std::size_t oldSize = bytes.size();
    bytes.resize(oldSize + size);
    mIn.read(&bytes[oldSize], static_cast<std::streamsize>(size));
    mLeft -= size;
    return mIn.good();
}

bool ChunkCursor::skip(std::uint64_t size)
{
    if (size < kShortestSeek)
        mIn.ignore(static_cast<std::streamsize>(size));
    else
        mIn.seekg(static_cast<std::streamoff>(size), std::ios::cur);
    mLeft -= size;
    return mIn.good();
}
} // namespace vumo::Data::detail
