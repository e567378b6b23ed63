#pragma once

#include <cstdint>
#include <string>

/// The host's side of binary scene files. It shares no code with the library, as the host does not.
namespace example
{
/// The `width` bytes of a number, the most significant one first.
std::string bigEndian(std::uint64_t number, unsigned int width);

/// A chunk's header: its tag, four reserved bytes, the size of its data.
std::string chunkHeader(const std::string& tag, std::uint64_t dataSize);

/// A chunk, with its data padded to a multiple of 8 bytes.
std::string chunk(const std::string& tag, const std::string& data);

/// A group of chunks.
std::string group(const std::string& type, const std::string& children);
} // namespace example
