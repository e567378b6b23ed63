#pragma once

#include "vumo/data/Handle.h"

#include <string>

/// The text, fit for a terminal: backslashes, control characters and double quotes are escaped, the bytes of other
/// characters stay as they are.
std::string printable(const std::string& text);

/// The text as a cell of a line: backslashes and control characters are escaped, the bytes of others stay as they are.
std::string escaped(const std::string& text);

/// The text of a message, fit for a terminal: control characters are escaped, newlines stay.
std::string message(const std::string& text);

/// The printable text in double quotes.
std::string inQuotes(const std::string& text);

/// The text without line feeds at its end.
std::string withoutLineEnd(std::string text);

/// What the commands call a node: its quoted name, or "scene" for the scene itself.
std::string nodeTitle(const std::string& node);

/// All values of the handle's current member, separated by blanks; strings are quoted.
std::string memberText(const vumo::Data::Handle& handle);

/// The text of a structure in the raw format, as scene files have it.
std::string layoutText(const vumo::Data::Structure& structure);

/// The width of a UTF-8 text on a terminal, a column for each character.
std::string::size_type columns(const std::string& text);
