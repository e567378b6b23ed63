#pragma once

#include "vumo/accessor/detail/FileChange.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vumo::Data::detail
{
/// New bytes for parts of a file, given from its start towards its end: some old bytes are cut out, and new ones may
/// take their place. All others stay. Those that stay in their place are neither read nor written, and those that move
/// are held once.
class Replacement
{
public:
    /// Reads the bytes of the file between two positions. False, with the reason told, when that failed.
    using Read = std::function<bool(std::uint64_t from, std::uint64_t to, char* bytes)>;

    explicit Replacement(Read read) : mRead(std::move(read)) {}
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// Cuts out the old bytes between two positions, none of which lies before an earlier one. False when those
    /// before them had to be read and could not.
    bool cut(std::uint64_t from, std::uint64_t to);

    /// Where new bytes can be appended after a cut.
    std::string& bytes() { return mBytes; }

    /// Says whether the old byte before that position stays, where no cut has gone beyond it.
    bool staysUntil(std::uint64_t position) const { return mCuts.empty() || mCuts.back().to < position; }

    /// Where an old byte that stays ends up, of those after the last cut.
    std::uint64_t newPlaceOf(std::uint64_t position) const { return position + mBytes.size() - mRemoved; }

    /// Where a new byte ends up, of those after the last cut, by its number in all of bytes().
    std::uint64_t newPlaceOfByte(std::size_t i) const { return mCuts.back().to + i - mRemoved; }

    /// Ends the part of the file and adds all that changes in it, whose bytes the change borrows. False when bytes that
    /// move cannot be read.
    bool addTo(FileChange& change, std::uint64_t end, std::uint64_t fileSize, const char* seekFailed,
               const char* writeFailed);

private:
    struct Cut
    {
        std::uint64_t from;
        std::uint64_t to;
        std::size_t bytes; // where the new ones begin that take its place
    };

    bool readMoved(std::uint64_t from, std::uint64_t to, std::uint64_t fileSize, FileEdit& edit);

    Read mRead;
    std::vector<Cut> mCuts;
    std::string mBytes;         // the new ones of all cuts
    std::uint64_t mRemoved = 0; // by all cuts
    std::vector<std::unique_ptr<char[]>> mMoved;
};
} // namespace vumo::Data::detail
