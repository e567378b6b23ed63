#pragma once

#include <cstdint>
#include <string>

namespace vumo::Data
{
/// Where a piece of metadata stands in a scene file: a statement of an ASCII scene, or a chunk of a binary one.
struct MetadataBlock
{
    enum eKind
    {
        kStructure,
        kAssociations
    };

    eKind kind = kStructure;
    std::string name;           ///< of the structure; of the node, or the scene associations name
    std::string format;         ///< of its text
    std::uint64_t position = 0; ///< of its first byte in the file, from 0
    std::uint64_t length = 0;   ///< in bytes, to the ";" of a statement, or to the end of a chunk with its padding
};
} // namespace vumo::Data
