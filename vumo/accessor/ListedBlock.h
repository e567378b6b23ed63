#pragma once

#include "vumo/accessor/MetadataBlock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vumo::Data
{
/// A piece of metadata in a scene file, and what the lines of its text say where its format is "raw".
struct ListedBlock : MetadataBlock
{
    /// A stream, by the lines before its elements.
    struct Stream
    {
        std::string name;
        std::string structure;      ///< the name of its structure
        std::string indexType;      ///< the name of its index type
        std::uint64_t elements = 0; ///< how many
        std::uint64_t bytes = 0;    ///< of the lines of its elements, with their ends
    };

    /// A channel, with its streams in the order of the text.
    struct Channel
    {
        std::string name;
        std::vector<Stream> streams;
    };

    std::vector<Channel> channels; ///< of associations
};
} // namespace vumo::Data
