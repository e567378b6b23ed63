#pragma once

#include "vumo/accessor/detail/BigEndian.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// A number that tells whether bytes are still what they were, unless somebody means them to look so.
///
/// Takes pieces of bytes one after the other; the same bytes in other pieces give another number. Each piece is its
/// length and then its 64-bit words, the most significant byte first, the last one filled up with zero bytes. Every
/// word w makes the state s, at first 0, into s' = (s xor w) * 0x9E3779B97F4A7C15 and then into s' xor (s' >> 32).
class Checksum
{
public:
    void add(std::string_view piece)
    {
        addWord(piece.size());
        constexpr std::size_t kWord = sizeof(std::uint64_t);
        const std::size_t whole = piece.size() / kWord * kWord;
        for (std::size_t i = 0; i < whole; i += kWord)
            addWord(readBigEndian<std::uint64_t>(piece.data() + i));
        if (whole < piece.size())
        {
            std::string last(piece.substr(whole));
            last.resize(kWord, '\0');
            addWord(readBigEndian<std::uint64_t>(last.data()));
        }
    }

    std::uint64_t value() const { return mState; }

private:
    void addWord(std::uint64_t word)
    {
        constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15; // 2^64 by the golden ratio: it spreads all bits
        mState = (mState ^ word) * kMultiplier;
        mState ^= mState >> 32;
    }

    std::uint64_t mState = 0;
};
} // namespace vumo::Data::detail
