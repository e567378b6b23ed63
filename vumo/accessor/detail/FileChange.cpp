#include "vumo/accessor/detail/FileChange.h"

#include <algorithm>
#include <array>

namespace vumo::Data::detail
{
namespace
{
constexpr std::size_t kBlockSize = 65536; // a call for it costs little beside comparing it

/// Holds one block of a file at a time, to compare it with.
class Block
{
public:
    explicit Block(const File& file) : mFile(file) {}

    std::string_view read(std::uint64_t position, std::size_t size)
    {
        return {mBytes.data(), mFile.read(position, mBytes.data(), size)};
    }

private:
    const File& mFile;
    std::array<char, kBlockSize> mBytes;
};

template <class Iterator>
std::size_t countSame(Iterator begin, Iterator end, Iterator other)
{
    return static_cast<std::size_t>(std::mismatch(begin, end, other).first - begin);
}

/// How many of the bytes, from their start on, stand in the file at that position.
std::size_t sameAtStart(Block& block, std::uint64_t position, std::string_view bytes)
{
    std::size_t same = 0;
    while (same < bytes.size())
    {
        const std::string_view wanted = bytes.substr(same, kBlockSize);
        const std::string_view there = block.read(position + same, wanted.size());
        if (there != wanted)
            return same + countSame(there.begin(), there.end(), wanted.begin());
        same += wanted.size();
    }
    return same;
}

/// How many of the bytes, from their end on, stand in the file in their place.
std::size_t sameAtEnd(Block& block, std::uint64_t position, std::string_view bytes)
{
    std::size_t same = 0;
    while (same < bytes.size()) // in blocks that end where those before began
    {
        const std::size_t size = std::min(bytes.size() - same, kBlockSize);
        const std::size_t begin = bytes.size() - same - size;
        const std::string_view wanted = bytes.substr(begin, size);
        const std::string_view there = block.read(position + begin, size);
        if (there.size() < size)
            return same; // past the end of the file nothing is the same
        if (there != wanted)
            return same + countSame(there.rbegin(), there.rend(), wanted.rbegin());
        same += size;
    }
    return same;
}
} // namespace

void FileChange::narrow(const File& file)
{
    Block block(file);
    for (FileEdit& edit : mEdits)
    {
        const std::size_t atStart = sameAtStart(block, edit.position, edit.bytes);
        edit.position += atStart;
        edit.bytes.remove_prefix(atStart);
        edit.bytes.remove_suffix(sameAtEnd(block, edit.position, edit.bytes)); // of what is left, so not twice
        edit.old = edit.old.substr(std::min(atStart, edit.old.size()), edit.bytes.size());
    }
}

Accessor::WriteCost FileChange::cost(const File& file) const
{
    Accessor::WriteCost cost;
    cost.oldLength = file.size();
    cost.newLength = mLength;
    cost.position = std::min(cost.oldLength, mLength);
    for (const FileEdit& edit : mEdits)
    {
        cost.bytes += edit.bytes.size();
        if (!edit.bytes.empty())
            cost.position = std::min(cost.position, edit.position);
    }
    return cost;
}

bool FileChange::isDoneIn(const File& file) const
{
    return file.size() == mLength &&
           std::all_of(mEdits.begin(), mEdits.end(), [](const FileEdit& edit) { return edit.bytes.empty(); });
}
} // namespace vumo::Data::detail
