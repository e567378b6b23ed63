#pragma once

#include <ostream>
#include <string>

namespace bench
{
/// Writes the text between double quotes, with those escapes that the library's text and JSON have in common. For what
/// the records' labels hold they are the same.
inline void writeQuoted(const std::string& text, std::ostream& out)
{
    out << '"';
    for (const char c : text)
    {
        if (c == '\n')
            out << "\\n";
        else if (c == '"' || c == '\\')
            out << '\\' << c;
        else
            out << c;
    }
    out << '"';
}
} // namespace bench
