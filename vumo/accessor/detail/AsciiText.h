#pragma once

#include <string>

namespace vumo::Data::detail
{
/// Makes `text` fit for a quoted value of an ASCII statement: control characters become escapes such as "\n" or
/// "\001", and quotes and backslashes get a backslash. Steps by characters of the current locale's encoding, so a
/// byte that looks like a backslash inside a longer character stays what it is.
std::string escapeValue(const std::string& text);

/// Undoes escapeValue() in one pass. An unknown escape keeps both of its characters.
std::string unescapeValue(const std::string& text);
} // namespace vumo::Data::detail
