#pragma once

#include "vumo/accessor/UnreadBlock.h"
#include "vumo/accessor/detail/BlockChecksum.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// A piece of metadata in a scene file and what became of it when the file was read.
struct FileBlock : UnreadBlock
{
    enum eState
    {
        kRead,
        kUnread, ///< a filter did not want it, or it cannot be read
        kOutdone ///< another one of its name counts
    };

    eState state = kRead;
    std::uint64_t checksum = 0;  ///< of its bytes
    Ref<const Structure> layout; ///< of a structure that could be read, where unread blocks are kept
};

/// All metadata of a scene file, in the order of the file.
struct FileBlocks
{
    std::vector<FileBlock> blocks;
    std::size_t ofHost = 0; ///< how many of the first ones are left to the host: those ahead of the first "DATS"
    bool areKept = false;   ///< writing leaves those in the file that are unread

    std::uint64_t checksum() const;

    /// Says whether writing has to leave any of them in the file.
    bool hasKept() const;
};

/// Of a statement's text up to its ";", or of a chunk's header and its data without the padding.
inline std::uint64_t blockChecksum(std::initializer_list<std::string_view> pieces)
{
    BlockChecksum checksum;
    for (const std::string_view piece : pieces)
        checksum.add(piece);
    return checksum.value();
}

/// Of all blocks in their order, going by what they have as `checksum`; where they stand does not matter. Never 0,
/// which stands for metadata that nobody knows.
template <class Iterator>
std::uint64_t metadataChecksum(Iterator block, Iterator end)
{
    BlockChecksum checksum;
    for (; block != end; ++block)
        checksum.add({reinterpret_cast<const char*>(&block->checksum), sizeof(block->checksum)});
    return std::max<std::uint64_t>(checksum.value(), 1);
}

inline std::uint64_t FileBlocks::checksum() const
{
    return metadataChecksum(blocks.begin() + static_cast<std::ptrdiff_t>(ofHost), blocks.end());
}

inline bool FileBlocks::hasKept() const
{
    return areKept && std::any_of(blocks.begin() + static_cast<std::ptrdiff_t>(ofHost), blocks.end(),
                                  [](const FileBlock& block) { return block.state == FileBlock::kUnread; });
}
} // namespace vumo::Data::detail
