#pragma once

#include <charconv>
#include <ios>
#include <string>
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
    bool hasHexFloats() const;

    template <class T>
    void append(std::string& text, T value) const
    {
        if constexpr (std::is_floating_point_v<T>)
            appendFloat(text, value);
        else
            appendInteger(text, value);
    }

private:
    template <class T>
    static void appendInteger(std::string& text, T value)
    {
        char digits[24]; // 20 and a sign are the longest
        text.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
    }

    void appendFloat(std::string& text, double value) const;
    void appendUncommonFloat(std::string& text, double value) const;
    void appendByStream(std::string& text, double value) const;

    std::ios::fmtflags mFlags{}; // of the float format alone
    std::streamsize mPrecision = 6;
};
} // namespace vumo::Data::detail
