#pragma once

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Namespace.h"

#include <charconv>
#include <string_view>
#include <type_traits>

namespace vumo::detail
{
/// Reads the decimal number at the start of `text`: an optional minus, digits, perhaps with a point between them,
/// and perhaps an exponent. Returns its end, or null, with `value` as it was, for anything else.
///
/// Takes less than formatted extraction, but gives what that gives. Correct rounding makes it so: short numbers are
/// an integer and a power of ten that a double holds exactly, so one operation rounds once (Clinger, "How to read
/// floating point numbers accurately", 1990); others go to `from_chars`.
const char* readPlainFloat(std::string_view text, double& value);
const char* readPlainFloat(std::string_view text, float& value);

/// Reads a number of any type that is plain and ends with the text or before whitespace; null for all others, which
/// are left to formatted extraction.
template <class T>
const char* readPlainNumber(std::string_view text, T& value)
{
    const char* const end = text.data() + text.size();
    const char* rest = nullptr;
    T number{};
    if constexpr (std::is_floating_point_v<T>)
        rest = readPlainFloat(text, number);
    else
    {
        const std::from_chars_result result = std::from_chars(text.data(), end, number);
        rest = result.ec == std::errc() ? result.ptr : nullptr;
    }
    if (!rest || (rest != end && !isClassicSpace(*rest)))
        return nullptr;
    value = number;
    return rest;
}
} // namespace vumo::detail
