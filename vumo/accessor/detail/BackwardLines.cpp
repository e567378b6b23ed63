#include "vumo/accessor/detail/BackwardLines.h"

#include <algorithm>
#include <cstring>
#include <istream>

namespace vumo::Data::detail
{
namespace
{
constexpr std::streamoff kFirstBlock = 4096;      // a page: all that a scene without metadata costs
constexpr std::streamoff kUsualBlock = 40960;     // so that a few calls read the metadata of most scenes
constexpr std::streamoff kLargestBlock = 4 << 20; // larger ones are not read faster

/// A block is at most this part of what was read before it, or kUsualBlock: reading too far, into the scene, stays
/// cheap.
constexpr std::streamoff kLargestPart = 32;

std::streamoff blockSize(std::streamoff alreadyRead)
{
    const std::streamoff largest = std::clamp(alreadyRead / kLargestPart, kUsualBlock, kLargestBlock);
    return std::clamp(alreadyRead, kFirstBlock, largest);
}
} // namespace

BackwardLines::BackwardLines(std::istream& in, std::streamoff size, std::size_t longestHeld)
    : mIn(in),
      mSize(size),
      mLongestHeld(std::max(longestHeld, kHeadSize)),
      mEnd(size),
      mBegin(size)
{
}

bool BackwardLines::previous(Line& line)
{
    if (mEnd < 0)
        return false;
    // The carriage return and the character before it, while they are held: a long line is not held as a whole.
    while (mNewlines.empty() && mBegin > std::max<std::streamoff>(0, mEnd - 2) && load())
        continue;
    line.next = std::min(mEnd + 1, mSize);
    line.end = mEnd < mSize && lastOf(mEnd) == '\r' ? mEnd - 1 : mEnd;
    line.last = lastOf(line.end);

    while (mNewlines.empty() && mBegin > 0 && load())
        continue;
    line.begin = mNewlines.empty() ? 0 : mNewlines.back() + 1;
    if (line.begin == line.end)
        line.last = '\0'; // what was looked at belongs to the line above
    if (!mError.empty())
        return false;
    line.head = held(line.begin, std::min(line.end, line.begin + std::streamoff{kHeadSize}));

    mEnd = line.begin - 1; // the newline above; -1 after the first line
    if (!mNewlines.empty())
        mNewlines.pop_back();
    return true;
}

bool BackwardLines::readText(std::streamoff begin, std::streamoff end, std::string_view& text)
{
    if (holdsAll(begin, end))
    {
        text = held(begin, end);
        return true;
    }
    mLongText.resize(static_cast<std::size_t>(end - begin));
    text = mLongText;
    return read(begin, mLongText.data(), mLongText.size());
}

void BackwardLines::forgetFrom(std::streamoff offset)
{
    if (holdsAll(offset, offset))
        mHeld = static_cast<std::size_t>(offset - mBegin);
}

bool BackwardLines::holdsAll(std::streamoff begin, std::streamoff end) const
{
    return begin >= mBegin && static_cast<std::size_t>(end - mBegin) <= mHeld;
}

std::string_view BackwardLines::held(std::streamoff begin, std::streamoff end) const
{
    return {mBytes.get() + mRoom + (begin - mBegin), static_cast<std::size_t>(end - begin)};
}

/// The character in front of `end`; zero when it is not held.
char BackwardLines::lastOf(std::streamoff end) const
{
    return end > 0 && holdsAll(end - 1, end) ? held(end - 1, end).front() : '\0';
}

/// Reads the block before what is held. False for good once that failed.
bool BackwardLines::load()
{
    if (!mError.empty())
        return false;
    if (mHeld > mLongestHeld)
        mHeld = kHeadSize; // the head of the line that goes on in the block to be read
    const auto size = static_cast<std::size_t>(std::min(mBegin, blockSize(mSize - mBegin)));
    if (mRoom < size)
        makeRoom(size);
    const std::size_t place = mRoom - size;
    const std::streamoff position = mBegin - static_cast<std::streamoff>(size);
    if (!read(position, &mBytes[place], size))
        return false;
    mRoom = place;
    mHeld += size;
    mBegin = position;

    const char* const begin = &mBytes[place];
    const char* const end = begin + size;
    for (const char* next = begin; next < end; ++next)
    {
        next = static_cast<const char*>(std::memchr(next, '\n', static_cast<std::size_t>(end - next)));
        if (!next)
            break;
        mNewlines.push_back(position + (next - begin));
    }
    return true;
}

/// Makes room for `size` bytes and much more, so that a long statement is seldom moved.
void BackwardLines::makeRoom(std::size_t size)
{
    const std::size_t room = std::max(size, 3 * mHeld); // so that all moves together cost less than one reading
    std::unique_ptr<char[]> larger(new char[room + mHeld]);
    if (mHeld > 0)
        std::memcpy(&larger[room], &mBytes[mRoom], mHeld);
    mBytes.swap(larger);
    mRoom = room;
}

bool BackwardLines::read(std::streamoff position, char* bytes, std::size_t size)
{
    if (!mIn.seekg(position))
        return fail("Could not seek previous block.");
    return mIn.read(bytes, static_cast<std::streamsize>(size)) || fail("Could not read block.");
}

bool BackwardLines::fail(const char* error)
{
    mError = error;
    return false;
}
} // namespace vumo::Data::detail
