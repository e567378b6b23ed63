#pragma once

#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// Appends `text` made fit for a quoted value of an ASCII statement: control characters become escapes such as "\n" or
/// "\001", and quotes and backslashes get a backslash. Steps by characters of the current locale's encoding, so a
/// byte that looks like a backslash inside a longer character stays what it is.
///
/// False when unescapeValue() would not give the text back: it has a byte that is no character, but would become one
/// together with the backslash of an escape.
bool appendEscapedValue(const std::string& text, std::string& out);

/// Makes `text` what the value is without those escapes. An unknown escape keeps both of its characters, and a quote
/// without one stays.
///
/// False when such quotes end the value before a ";": what follows is another statement.
bool unescapeValue(std::string_view value, std::string& text);

/// Where the byte stands in a value, with its escapes, that gives the one at `position` in the text without them, and
/// without the carriage returns at the ends of lines.
std::size_t escapedPosition(std::string_view value, std::size_t position);
} // namespace vumo::Data::detail
