#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vumo::Data::detail
{
/// One place of a file that gets new bytes, and what to say when that fails.
struct FileEdit
{
    std::uint64_t position;
    std::string bytes;
    const char* seekFailed;
    const char* writeFailed;
};

/// What is to become of a file: edits, none of which overlaps another, in the order of writing, and its new length.
struct FileChange
{
    std::vector<FileEdit> edits;
    std::uint64_t length;
    const char* truncateFailed;
};
} // namespace vumo::Data::detail
