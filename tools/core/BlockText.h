#pragma once

#include "core/SceneFile.h"

#include <cstdint>
#include <string>

/// The bytes of the block in the file; fewer when the file has become shorter.
std::string blockBytes(const SceneFile& scene, const vumo::Data::MetadataBlock& block);

/// A line of the text of a block.
struct BlockPlace
{
    std::uint64_t line = 0; ///< counted from 1; 0 for none
    std::string text;       ///< as it stands in the file, cut to some characters around the place
};

/// Where that is which the messages tell about a block that cannot be read; none when they don't.
BlockPlace placeOfFault(const SceneFile& scene, const vumo::Data::UnreadBlock& block);
