#pragma once

#include <cstdint>

namespace vumo::Data::detail
{
// Lengths in a binary scene file, in bytes.

constexpr std::uint64_t kTagSize = 4;
constexpr std::uint64_t kGroupTypeSize = 4;
constexpr std::uint64_t kReservedSize = 4;

/// Where the size stands in a chunk header, and so where the main chunk's size stands in the file.
constexpr std::uint64_t kSizeOffset = kTagSize + kReservedSize;
constexpr std::uint64_t kHeaderSize = kSizeOffset + 8;

/// The header and the type of a group.
constexpr std::uint64_t kGroupHeadSize = kHeaderSize + kGroupTypeSize;

/// From a group's size to its first child.
constexpr std::uint64_t kGroupSizeToStart = kGroupHeadSize - kSizeOffset;

/// The data of the chunk "BCSZ": the offset from its own end back to the first chunk of the trailer.
constexpr std::uint64_t kBackwardOffsetSize = 4;

/// The chunk "BCSZ" with its padding; the main chunk ends with it.
constexpr std::uint64_t kBackwardChunkSize = kHeaderSize + 8;

/// How many bytes follow `dataSize` bytes of data up to the next multiple of 8.
constexpr std::uint64_t paddingOf(std::uint64_t dataSize)
{
    return (8 - dataSize % 8) % 8;
}
} // namespace vumo::Data::detail
