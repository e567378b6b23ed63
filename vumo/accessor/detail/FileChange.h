#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/detail/File.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// One place of a file that gets new bytes, and what to say when that fails.
struct FileEdit
{
    std::uint64_t position;
    std::string_view bytes;
    const char* seekFailed;
    const char* writeFailed;
    std::string_view old = {}; ///< what stands in their place, unless nobody has read that
};

/// What is to become of a file: edits, none of which overlaps another, in the order of writing, and its new length.
class FileChange
{
public:
    /// Says what to report when the file cannot be cut to its new length.
    FileChange(std::uint64_t length, const char* truncateFailed) : mLength(length), mTruncateFailed(truncateFailed) {}
    FileChange(const FileChange&) = delete;
    FileChange& operator=(const FileChange&) = delete;

    /// Borrows the bytes.
    void add(const FileEdit& edit) { mEdits.push_back(edit); }

    /// Leaves out of the edits what the file begins and ends them with already: an edit that changes one node's
    /// metadata costs no more than that. An edit may get empty.
    void narrow(const File& file);

    /// What it takes, once it is narrowed.
    Accessor::WriteCost cost(const File& file) const;

    /// Says whether nothing is to become of the file.
    bool isDoneIn(const File& file) const;

    const std::vector<FileEdit>& edits() const { return mEdits; }
    std::uint64_t length() const { return mLength; }
    const char* truncateFailed() const { return mTruncateFailed; }

private:
    std::vector<FileEdit> mEdits;
    std::uint64_t mLength;
    const char* mTruncateFailed;
};
} // namespace vumo::Data::detail
