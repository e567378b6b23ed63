#include "core/Text.h"

#include "vumo/serialize/StructureSerializerRaw.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace
{
bool isControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

std::string hexEscape(char character)
{
    char escape[8];
    std::snprintf(escape, sizeof(escape), "\\x%02x", static_cast<unsigned int>(static_cast<unsigned char>(character)));
    return escape;
}
} // namespace

std::string printable(const std::string& text)
{
    std::string result;
    for (const char character : escaped(text))
        result += character == '"' ? "\\\"" : std::string(1, character);
    return result;
}

std::string escaped(const std::string& text)
{
    const auto isPlain = [](char character) { return character != '\\' && !isControl(character); };
    if (std::all_of(text.begin(), text.end(), isPlain)) // as nearly all texts are
        return text;
    std::string result;
    for (const char character : text)
    {
        if (character == '\\')
            result += '\\';
        if (character == '\n')
            result += "\\n";
        else if (character == '\t')
            result += "\\t";
        else
            result += isControl(character) ? hexEscape(character) : std::string(1, character);
    }
    return result;
}

std::string message(const std::string& text)
{
    std::string result;
    for (const char character : text)
        result += isControl(character) && character != '\n' ? hexEscape(character) : std::string(1, character);
    return result;
}

std::string inQuotes(const std::string& text)
{
    return '"' + printable(text) + '"';
}

std::string withoutLineEnd(std::string text)
{
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

std::string nodeTitle(const std::string& node)
{
    return node.empty() ? "scene" : "node " + inQuotes(node);
}

std::string memberText(const vumo::Data::Handle& handle)
{
    std::string result;
    for (unsigned int i = 0; i < handle.dataLength(); ++i)
    {
        if (i > 0)
            result += ' ';
        const std::string value = handle.str(i, vumo::Data::kExact);
        result += handle.dataType() == vumo::Data::Member::kString ? inQuotes(value) : value;
    }
    return result;
}

std::string layoutText(const vumo::Data::Structure& structure)
{
    std::ostringstream out;
    vumo::Data::StructureSerializerRaw::theFormat()->write(structure, out);
    return withoutLineEnd(out.str());
}

std::string::size_type columns(const std::string& text)
{
    const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    return text.size() - static_cast<std::string::size_type>(std::count_if(text.begin(), text.end(), isContinuation));
}
