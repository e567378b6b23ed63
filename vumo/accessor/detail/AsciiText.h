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

/// Undoes that in one pass, in place, for what stands between two positions in the text, and cuts off all else. An
/// unknown escape keeps both of its characters, and a quote without one stays.
///
/// False when such quotes end the value before a ";": what follows is another statement.
bool unescapeValue(std::string& text, std::string::size_type begin, std::string::size_type end);

/// Where the byte stands in a value, with its escapes, that gives the one at `position` in the text without them, and
/// without the carriage returns at the ends of lines.
std::size_t escapedPosition(std::string_view value, std::size_t position);
} // namespace vumo::Data::detail
