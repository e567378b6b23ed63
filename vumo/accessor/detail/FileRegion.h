#pragma once

#include "vumo/accessor/detail/FileBlocks.h"

#include <cstdint>
#include <vector>

namespace vumo::Data::detail
{
/// A piece of metadata where it stands in the file that is to be written.
struct BlockPlace
{
    std::uint64_t begin = 0;
    std::uint64_t end = 0; ///< with the end of its line, or its padding
    std::uint64_t checksum = 0;
    const char* mustStay = nullptr; ///< why it can neither be removed nor replaced, if so
};

/// The part of a file where metadata stands.
struct FileRegion
{
    std::vector<BlockPlace> blocks; ///< in the order of the file
    std::uint64_t insertion = 0;    ///< where metadata goes that takes no block's place
    std::uint64_t end = 0;
    bool endsLine = true; ///< or does the last block stand at the end of the file, without an end of line?

    std::uint64_t checksum() const { return metadataChecksum(blocks.begin(), blocks.end()); }
};
} // namespace vumo::Data::detail
