#pragma once

#include "vumo/foundation/Export.h"

#include <cstdint>
#include <string>

namespace vumo::Data
{
/// What stands at the head of every chunk of a binary scene file: 4 bytes of tag, 4 reserved ones, 8 of size.
/// The chunk's data follows, and zero bytes up to the next multiple of 8 of the data's size.
struct VUMO_EXPORT BinaryChunkHeader
{
    /// Four characters.
    std::string mTag;

    /// Of the data, in bytes, without header and padding.
    std::uint64_t mSize = 0;
};
} // namespace vumo::Data
