#include "vumo/accessor/detail/ChunkCursor.h"

#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/BinaryLayout.h"
#include "vumo/accessor/detail/BlockChecksum.h"

#include <algorithm>
#include <istream>

namespace vumo::Data::detail
{
ChunkCursor::ChunkCursor(std::istream& in, std::uint64_t length, std::uint64_t windowSize)
    : mIn(in),
      mLeft(length),
      mWindowSize(windowSize)
{
}

bool ChunkCursor::readHeader()
{
    std::string_view bytes;
    if (mLeft < kHeaderSize || !take(kHeaderSize, bytes))
        return false;
    mHeaderBytes = bytes; // a copy: the next call of take() may move the window
    mHeader.mTag.assign(mHeaderBytes, 0, kTagSize);
    mHeader.mSize = readBigEndian<std::uint64_t>(mHeaderBytes.data() + kSizeOffset);
    return true;
}

std::uint64_t ChunkCursor::paddedSize() const
{
    return mHeader.mSize + paddingOf(mHeader.mSize);
}

bool ChunkCursor::skipData()
{
    return holdsData() && skip(paddedSize());
}

bool ChunkCursor::sumData(std::uint64_t& checksum)
{
    if (!holdsData())
        return false;
    BlockChecksum sum(mHeaderBytes);
    for (std::uint64_t left = mHeader.mSize; left > 0;)
    {
        const std::uint64_t held = mWindow.size() - mPosition;
        std::string_view piece;
        if (!take(std::min(left, held > 0 ? held : mWindowSize), piece))
            return false;
        sum.add(piece);
        left -= piece.size();
    }
    checksum = sum.value();
    return skip(paddingOf(mHeader.mSize));
}

bool ChunkCursor::readData(std::string_view& data)
{
    if (!holdsData() || !take(paddedSize(), data))
        return false;
    data = data.substr(0, mHeader.mSize);
    return true;
}

bool ChunkCursor::holdsData() const
{
    return mHeader.mSize <= mLeft && paddingOf(mHeader.mSize) <= mLeft - mHeader.mSize; // no sum: it may overflow
}

bool ChunkCursor::take(std::uint64_t size, std::string_view& bytes)
{
    if (mWindow.size() - mPosition < size && !fillWindow(size))
        return false;
    bytes = std::string_view(mWindow).substr(mPosition, size);
    mPosition += size;
    mLeft -= size;
    return true;
}

/// Moves the window to the position and reads on until it holds `size` bytes, or as much as there is room for.
bool ChunkCursor::fillWindow(std::uint64_t size)
{
    const std::size_t held = mWindow.size() - mPosition;
    // What views of it were given out for is over. One that keeps its size is not filled with zero bytes again.
    std::copy(mWindow.begin() + static_cast<std::ptrdiff_t>(mPosition), mWindow.end(), mWindow.begin());
    mPosition = 0;
    mWindow.resize(std::max(size, std::min(mLeft, mWindowSize)));
    return static_cast<bool>(mIn.read(&mWindow[held], static_cast<std::streamsize>(mWindow.size() - held)));
}

bool ChunkCursor::skip(std::uint64_t size)
{
    // What lies beyond the window was not read yet, and is not read now.
    const std::uint64_t held = std::min<std::uint64_t>(size, mWindow.size() - mPosition);
    mPosition += held;
    mLeft -= size;
    return size == held || mIn.seekg(static_cast<std::streamoff>(size - held), std::ios::cur);
}
} // namespace vumo::Data::detail
