#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <string_view>

namespace vumo::detail
{
/// What characters are, whatever locale is in use: texts of files do not depend on it.

/// What separates words within a line.
constexpr char kBlanks[] = " \t";

/// Says whether formatted extraction in the classic locale takes the character for whitespace.
constexpr bool isClassicSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Says whether the character is a control character of ASCII.
constexpr bool isControl(char c)
{
    constexpr char kDelete = 0x7F;
    return static_cast<unsigned char>(c) < ' ' || c == kDelete;
}

/// The text without the whitespace at its ends.
inline std::string_view trimmed(std::string_view text)
{
    std::string_view::size_type end = text.size();
    while (end > 0 && isClassicSpace(text[end - 1]))
        --end;
    std::string_view::size_type begin = 0;
    while (begin < end && isClassicSpace(text[begin]))
        ++begin;
    return text.substr(begin, end - begin);
}
} // namespace vumo::detail
