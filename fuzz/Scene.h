#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vumo::fuzz
{
/// Reads a scene file of that ending, ".oa" or ".ob": once, so that it keeps what it does not read, in two parts, and
/// only to list it. All give the same, number by number.
void readScene(const char* ending, const std::uint8_t* data, std::size_t size);

/// Reads a scene file, writes what was read, and does both twice more: a write that fails leaves the file
/// as it was, one that succeeds can be read, with the same metadata, and writing goes on to give the same bytes. Before
/// that it does so while it keeps what it did not read, which has to stay byte by byte. All that with numbers of six
/// digits and with exact ones.
void rewriteScene(const char* ending, const std::uint8_t* data, std::size_t size);
} // namespace vumo::fuzz
