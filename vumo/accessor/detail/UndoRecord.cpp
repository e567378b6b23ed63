#include "vumo/accessor/detail/UndoRecord.h"

#include "vumo/accessor/detail/BigEndian.h"
#include "vumo/accessor/detail/Checksum.h"

#include <array>
#include <limits>

namespace vumo::Data::detail
{
namespace
{
constexpr std::string_view kMagic = "VUMOUNDO";
constexpr std::uint32_t kVersion = 1;

// Where the fields of a stored record stand; the table of ranges follows them.
constexpr std::size_t kVersionOffset = 8;
constexpr std::size_t kCountOffset = 12;
constexpr std::size_t kOldLengthOffset = 16;
constexpr std::size_t kNewLengthOffset = 24;
constexpr std::size_t kSurroundingsOffset = 32;
constexpr std::size_t kTableOffset = 40;
constexpr std::size_t kEntrySize = 24;
constexpr std::size_t kChecksumSize = 8;

/// How many bytes at the start of the file, and in front of each range, have to be those that they were: a block of
/// most file systems, which takes one read.
constexpr std::uint64_t kSurroundingsSize = 4096;

/// How much of a file is held at once to compare it.
constexpr std::size_t kBlockSize = 65536; // a call for it costs little beside comparing it

constexpr std::uint64_t kLongestFile = std::numeric_limits<std::int64_t>::max();

std::uint64_t numberAt(std::string_view bytes, std::size_t offset)
{
    return readBigEndian<std::uint64_t>(bytes.data() + offset);
}

/// Appends pieces to a file, and the checksum of them.
class PieceWriter
{
public:
    explicit PieceWriter(const File& file) : mFile(file) {}

    bool write(std::string_view piece)
    {
        mChecksum.add(piece);
        return append(piece);
    }

    bool end() { return append(bigEndian(mChecksum.value())); }

private:
    bool append(std::string_view piece)
    {
        const std::uint64_t position = mPosition;
        mPosition += piece.size();
        return mFile.write(position, piece.data(), piece.size());
    }

    const File& mFile;
    Checksum mChecksum;
    std::uint64_t mPosition = 0;
};

/// A writer that is stopped leaves the first bytes of a record, or as many zero bytes where the disk did not follow.
bool mayBeginARecord(std::string_view bytes)
{
    const std::string_view begin = bytes.substr(0, kMagic.size());
    return begin == kMagic.substr(0, begin.size()) || begin.find_first_not_of('\0') == std::string_view::npos;
}

/// Writes as little of the old bytes as it can: one that is as it was may lie where this process must not write.
bool restoreBytes(const File& file, std::uint64_t position, std::string_view oldBytes)
{
    std::array<char, kBlockSize> buffer;
    const std::string_view there(buffer.data(), file.read(position, buffer.data(), oldBytes.size()));
    const auto differs = std::mismatch(there.begin(), there.end(), oldBytes.begin()).second - oldBytes.begin();
    std::size_t end = oldBytes.size(); // from the end only where the file has all of them
    while (end <= there.size() && end > static_cast<std::size_t>(differs) && there[end - 1] == oldBytes[end - 1])
        --end;
    const std::string_view wrong = oldBytes.substr(0, end).substr(static_cast<std::size_t>(differs));
    return file.write(position + static_cast<std::uint64_t>(differs), wrong.data(), wrong.size());
}
} // namespace

bool UndoRecord::take(const File& file, const FileChange& change)
{
    mOldLength = file.size();
    mNewLength = change.length();
    addRanges(change);
    if (!readOldBytes(file) || !readSurroundings(file, mSurroundings))
        return false;
    mHead = head();
    return true;
}

/// One range for each edit, and one without new bytes for what is cut off.
void UndoRecord::addRanges(const FileChange& change)
{
    for (const FileEdit& edit : change.edits())
    {
        if (!edit.bytes.empty())
            mRanges.push_back({edit.position, edit.old, edit.bytes});
    }
    if (mNewLength < mOldLength)
        mRanges.push_back({mNewLength, {}, {}});
    std::sort(mRanges.begin(), mRanges.end(), [](const Range& a, const Range& b) { return a.position < b.position; });
}

bool UndoRecord::readOldBytes(const File& file)
{
    const auto sizeToRead = [this](const Range& range) {
        const std::uint64_t end = range.newBytes.empty() ? mOldLength : std::min(range.end(), mOldLength);
        const auto size = static_cast<std::size_t>(end - std::min(range.position, end));
        return range.oldBytes.size() == size ? 0 : size;
    };
    std::size_t total = 0;
    for (const Range& range : mRanges)
        total += sizeToRead(range);
    mBytes.resize(total); // once: the ranges point into it
    std::size_t place = 0;
    for (Range& range : mRanges)
    {
        const std::size_t size = sizeToRead(range);
        if (size == 0)
            continue;
        if (file.read(range.position, &mBytes[place], size) != size)
            return false;
        range.oldBytes = std::string_view(mBytes).substr(place, size);
        place += size;
    }
    return true;
}

std::string UndoRecord::head() const
{
    std::string bytes(kMagic);
    bytes += bigEndian(kVersion) + bigEndian(static_cast<std::uint32_t>(mRanges.size()));
    bytes += bigEndian(mOldLength) + bigEndian(mNewLength) + bigEndian(mSurroundings);
    for (const Range& range : mRanges)
    {
        for (const std::uint64_t number :
             {range.position, std::uint64_t(range.oldBytes.size()), std::uint64_t(range.newBytes.size())})
            bytes += bigEndian(number);
    }
    return bytes;
}

bool UndoRecord::store(const File& recordFile) const
{
    PieceWriter writer(recordFile);
    if (!writer.write(mHead))
        return false;
    for (const Range& range : mRanges)
    {
        if (!writer.write(range.oldBytes) || !writer.write(range.newBytes))
            return false;
    }
    return writer.end();
}

UndoRecord::eContent UndoRecord::load(const File& recordFile)
{
    std::array<char, kTableOffset> begin;
    if (!mayBeginARecord({begin.data(), recordFile.read(0, begin.data(), begin.size())}))
        return eContent::kForeign;
    mBytes.resize(static_cast<std::size_t>(recordFile.size()));
    if (recordFile.read(0, mBytes.data(), mBytes.size()) != mBytes.size())
        return eContent::kUnreadable;
    return parse();
}

UndoRecord::eContent UndoRecord::parse()
{
    std::string_view bytes = mBytes;
    // Zero bytes where the magic should be: the disk had the length of the record, but not yet what is in it.
    if (bytes.size() < kTableOffset + kChecksumSize || bytes.front() == '\0')
        return eContent::kIncomplete;
    if (readBigEndian<std::uint32_t>(bytes.data() + kVersionOffset) != kVersion)
        return eContent::kForeign;

    const std::uint64_t sum = numberAt(bytes, bytes.size() - kChecksumSize);
    bytes.remove_suffix(kChecksumSize);
    const std::uint64_t count = readBigEndian<std::uint32_t>(bytes.data() + kCountOffset);
    // Divided, not multiplied: the count is not to be trusted yet, and a product could overflow.
    if (count > (bytes.size() - kTableOffset) / kEntrySize)
        return eContent::kIncomplete;
    mOldLength = numberAt(bytes, kOldLengthOffset);
    mNewLength = numberAt(bytes, kNewLengthOffset);
    mSurroundings = numberAt(bytes, kSurroundingsOffset);
    const std::string_view start = bytes.substr(0, kTableOffset + count * kEntrySize);
    if (!parseRanges(start.substr(kTableOffset), bytes.substr(start.size())))
        return eContent::kIncomplete;

    Checksum checksum;
    checksum.add(start);
    for (const Range& range : mRanges)
    {
        checksum.add(range.oldBytes);
        checksum.add(range.newBytes);
    }
    if (checksum.value() != sum)
        return eContent::kIncomplete;
    // A writer of this version makes no other: what is whole and contradicts itself comes from somewhere else.
    return isConsistent() ? eContent::kComplete : eContent::kForeign;
}

/// False when the bytes are not as many as the table says.
bool UndoRecord::parseRanges(std::string_view table, std::string_view bytes)
{
    mRanges.clear();
    for (; !table.empty(); table.remove_prefix(kEntrySize))
    {
        const std::uint64_t oldSize = numberAt(table, 8);
        const std::uint64_t newSize = numberAt(table, 16);
        if (oldSize > bytes.size() || newSize > bytes.size() - oldSize)
            return false;
        mRanges.push_back({numberAt(table, 0), bytes.substr(0, oldSize), bytes.substr(oldSize, newSize)});
        bytes.remove_prefix(oldSize + newSize);
    }
    return bytes.empty();
}

/// Says whether the ranges lie one after the other inside the file as it was and as it is to be.
bool UndoRecord::isConsistent() const
{
    std::uint64_t end = 0;
    for (const Range& range : mRanges)
    {
        const bool isInside = range.position >= end && range.position <= kLongestFile &&
                              (range.oldBytes.empty() || range.position + range.oldBytes.size() <= mOldLength) &&
                              (range.newBytes.empty() || range.position + range.newBytes.size() <= mNewLength);
        if (!isInside)
            return false;
        end = range.end();
    }
    return mOldLength <= kLongestFile && mNewLength <= kLongestFile;
}

/// Gives the checksum of the bytes around the ranges. False when they cannot be read.
bool UndoRecord::readSurroundings(const File& file, std::uint64_t& checksum) const
{
    Checksum sum;
    bool isRead = true;
    std::array<char, kSurroundingsSize> buffer;
    const auto add = [&](std::uint64_t begin, std::uint64_t end) {
        const auto size = static_cast<std::size_t>(end - begin);
        const std::size_t got = file.read(begin, buffer.data(), size);
        sum.add(std::string_view(buffer.data(), got));
        isRead = isRead && got == size;
    };
    if (!mRanges.empty())
        add(0, std::min(mRanges.front().position, kSurroundingsSize));
    std::uint64_t end = 0; // of the range before
    for (const Range& range : mRanges)
    {
        add(std::max(end, range.position - std::min(range.position, kSurroundingsSize)), range.position);
        end = range.end();
    }
    checksum = sum.value();
    return isRead;
}

UndoRecord::eFit UndoRecord::fit(const File& file) const
{
    const std::uint64_t size = file.size();
    if (size < std::min(mOldLength, mNewLength) || size > std::max(mOldLength, mNewLength))
        return eFit::kNone;
    std::uint64_t surroundings = 0;
    if (!readSurroundings(file, surroundings))
        return eFit::kUnknown;
    if (surroundings != mSurroundings)
        return eFit::kNone;
    Match all;
    all.isOld = size == mOldLength;
    all.isNew = size == mNewLength;
    for (const Range& range : mRanges)
    {
        if (!match(range, file, size, all))
            return eFit::kUnknown;
        if (!all.isEither)
            return eFit::kNone;
    }
    // New before old: of a change that changes nothing both are true, and then there is nothing to restore.
    return all.isNew ? eFit::kChanged : all.isOld ? eFit::kUnchanged : eFit::kMixed;
}

/// Takes from `result` what the bytes in a range speak against. False when they cannot be read.
bool UndoRecord::match(const Range& range, const File& file, std::uint64_t fileSize, Match& result) const
{
    std::array<char, kBlockSize> buffer;
    for (std::uint64_t offset = 0; offset < range.length(); offset += buffer.size())
    {
        const std::uint64_t position = range.position + offset;
        const std::uint64_t there = fileSize - std::min(position, fileSize);
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(range.length() - offset, buffer.size()));
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(count, there));
        if (file.read(position, buffer.data(), size) != size)
            return false;
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::uint64_t k = offset + i;
            const bool isThere = i < size;
            const bool isOld = k < range.oldBytes.size() ? isThere && buffer[i] == range.oldBytes[k] : !isThere;
            const bool isNew = k < range.newBytes.size() ? isThere && buffer[i] == range.newBytes[k] : !isThere;
            // Where a file grows or is cut off there may be zero bytes until the disk has got all of that.
            const bool isPastOneEnd = position + i >= std::min(mOldLength, mNewLength);
            const bool isNotWritten = isThere && buffer[i] == '\0' && isPastOneEnd;
            result.isOld = result.isOld && isOld;
            result.isNew = result.isNew && isNew;
            result.isEither = result.isEither && (isOld || isNew || isNotWritten);
        }
    }
    return true;
}

bool UndoRecord::restore(const File& file) const
{
    for (const Range& range : mRanges)
    {
        for (std::size_t offset = 0; offset < range.oldBytes.size(); offset += kBlockSize)
        {
            if (!restoreBytes(file, range.position + offset, range.oldBytes.substr(offset, kBlockSize)))
                return false;
        }
    }
    return file.size() == mOldLength || file.truncate(mOldLength);
}
} // namespace vumo::Data::detail
