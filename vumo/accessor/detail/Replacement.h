#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace vumo::Data::detail
{
/// New bytes for a part of a file, made of old ones and of new ones from the file's start towards its end. The part is
/// as short as can be told without comparing bytes: old bytes at its start stay out, and those at its end as well when
/// they do not move.
class Replacement
{
public:
    /// Appends the bytes of the file between two positions. False, with the reason told, when they cannot be read.
    using Copy = std::function<bool(std::uint64_t from, std::uint64_t to, std::string& bytes)>;

    explicit Replacement(Copy copy) : mCopy(std::move(copy)) {}

    /// Leaves out the old bytes between two positions, none of which lies before an earlier one. False when those
    /// before them cannot be read.
    bool cut(std::uint64_t from, std::uint64_t to);

    /// Where new bytes can be appended after a cut.
    std::string& bytes() { return mBytes; }

    /// Where an old byte that stays ends up, of those after the last cut.
    std::uint64_t newPlaceOf(std::uint64_t position) const;

    /// Where the next new byte ends up.
    std::uint64_t newPlace() const { return mFrom + mBytes.size(); }

    /// Takes in the old bytes up to there, after a cut. False when they cannot be read.
    bool copyUntil(std::uint64_t position);

    /// Ends the replaced part: takes in the old bytes up to `end` if they move. False when they cannot be read.
    bool finish(std::uint64_t end);

    /// Where what is replaced begins, after finish().
    std::uint64_t from() const { return mFrom; }

private:
    Copy mCopy;
    std::string mBytes;
    std::uint64_t mFrom = 0;
    std::uint64_t mTo = 0; // old bytes before it are copied or cut out
    bool mHasBegun = false;
};
} // namespace vumo::Data::detail
