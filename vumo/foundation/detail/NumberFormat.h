#pragma once

#include "vumo/foundation/detail/TextBuilder.h"

#include <charconv>
#include <cstddef>
#include <ios>
#include <type_traits>

namespace vumo::Data::detail
{
/// How numbers become text: as an output stream in the classic locale writes them, at a fraction of its cost.
///
/// Integers are plain decimal ones, and a char is a number, too.
class NumberFormat
{
public:
    /// That of a new stream: six significant digits.
    NumberFormat() = default;

    /// Takes over the precision and the float format of `out`, nothing else.
    explicit NumberFormat(const std::ios_base& out);

    /// Says whether floats are written as hexadecimal ones, which no reader takes back.
    bool hasHexFloats() const { return (mFlags & std::ios::floatfield) == (std::ios::fixed | std::ios::scientific); }

    template <class T>
    void append(TextBuilder& text, T value) const
    {
        if constexpr (std::is_floating_point_v<T>)
            appendFloat(text, value);
        else
            appendInteger(text, value);
    }

private:
    template <class T>
    static void appendInteger(TextBuilder& text, T value)
    {
        constexpr std::size_t kLongest = 20; // of all 64-bit numbers, with the sign
        char* const begin = text.room(kLongest);
        text.setEnd(std::to_chars(begin, begin + kLongest, value).ptr);
    }

    void appendFloat(TextBuilder& text, double value) const;
    void appendUncommonFloat(TextBuilder& text, double value) const;
    void appendByStream(TextBuilder& text, double value) const;

    std::ios::fmtflags mFlags{}; // of the float format alone
    std::streamsize mPrecision = 6;
};
} // namespace vumo::Data::detail
