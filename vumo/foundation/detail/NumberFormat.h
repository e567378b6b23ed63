#pragma once

#include "vumo/foundation/detail/Namespace.h"
#include "vumo/foundation/detail/TextBuilder.h"

#include <charconv>
#include <cstddef>
#include <ios>
#include <type_traits>

namespace vumo::detail
{
/// How numbers become text: as an output stream in the classic locale writes them, at a fraction of its cost.
///
/// Integers are plain decimal ones, and a char is a number, too.
class NumberFormat
{
public:
    /// That of a new stream: six significant digits.
    NumberFormat() = default;

    /// Takes over from `out` whether floats are exact, or else their precision and format; nothing else.
    explicit NumberFormat(std::ios_base& out);

    /// The one that gives each float the fewest digits with which it reads back to the very same value, but lays them
    /// out as six are: what six digits hold has the text that it has by default.
    static NumberFormat exact();

    /// Chooses for an output whether the formats that are made of it are exact.
    static void setExact(std::ios_base& out, bool isExact);

    bool isExact() const { return mIsExact; }

    /// Says whether floats are written as hexadecimal ones, which no reader takes back.
    bool hasHexFloats() const
    {
        return !mIsExact && (mFlags & std::ios::floatfield) == (std::ios::fixed | std::ios::scientific);
    }

    template <class T>
    void append(TextBuilder& text, T value) const
    {
        if constexpr (!std::is_floating_point_v<T>)
            appendInteger(text, value);
        else if (mIsExact)
            appendExactFloat(text, value);
        else
            appendFloat(text, value);
    }

private:
    template <class T>
    static void appendInteger(TextBuilder& text, T value)
    {
        constexpr std::size_t kLongest = 20; // of all 64-bit numbers, with the sign
        char* const begin = text.room(kLongest);
        text.setEnd(std::to_chars(begin, begin + kLongest, value).ptr);
    }

    // The type says which neighbours a number has to be told from.
    static void appendExactFloat(TextBuilder& text, float value);
    static void appendExactFloat(TextBuilder& text, double value);
    void appendFloat(TextBuilder& text, double value) const;
    void appendUncommonFloat(TextBuilder& text, double value) const;
    void appendByStream(TextBuilder& text, double value) const;

    std::ios::fmtflags mFlags{}; // of the float format alone
    std::streamsize mPrecision = 6;
    bool mIsExact = false;
};
} // namespace vumo::detail
