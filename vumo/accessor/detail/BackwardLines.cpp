#include "vumo/accessor/detail/BackwardLines.h"

#include <algorithm>
#include <utility>

namespace vumo::Data::detail
{
BackwardLines::BackwardLines(std::istream& in, std::streamoff size) : mIn(in), mSize(size), mEnd(size) {}

bool BackwardLines::Block::holds(std::streamoff offset) const
{
    return offset >= begin && offset - begin < static_cast<std::streamoff>(bytes.size());
}

bool BackwardLines::previous(Line& line)
{
    if (mEnd < 0)
        return false;
    line.next = std::min(mEnd + 1, mSize);
    line.end = mEnd;
    if (mEnd > 0 && mEnd < mSize && at(mEnd - 1) == '\r')
        --line.end;
    line.last = line.end > 0 ? at(line.end - 1) : '\0';

    line.begin = line.end;
    while (line.begin > 0 && mError.empty() && at(line.begin - 1) != '\n')
        --line.begin;
    if (line.begin == line.end)
        line.last = '\0';
    line.head.clear();
    for (std::streamoff i = line.begin; i < line.end && line.head.size() < kHeadSize; ++i)
        line.head += at(i);

    mEnd = line.begin - 1;
    return mError.empty();
}

char BackwardLines::at(std::streamoff offset)
{
    if (mLater.holds(offset))
        return mLater.bytes[static_cast<std::size_t>(offset - mLater.begin)];
    if (!mCurrent.holds(offset))
        load(offset);
    return mError.empty() ? mCurrent.bytes[static_cast<std::size_t>(offset - mCurrent.begin)] : '\0';
}

/// Reads the block that holds `offset`. Blocks are counted from the end of the file; the one at its start may be
/// shorter than the rest.
void BackwardLines::load(std::streamoff offset)
{
    const std::streamoff blockNumber = (mSize - 1 - offset) / kBlockSize + 1;
    const std::streamoff end = mSize - (blockNumber - 1) * kBlockSize;
    Block block;
    block.begin = std::max<std::streamoff>(0, mSize - blockNumber * kBlockSize);
    block.bytes.resize(static_cast<std::size_t>(end - block.begin));
    if (!mIn.seekg(block.begin))
        mError = "Could not seek previous block.";
    else if (!mIn.read(block.bytes.data(), end - block.begin))
        mError = "Could not read block.";
    mLater = std::exchange(mCurrent, std::move(block));
}
} // namespace vumo::Data::detail
