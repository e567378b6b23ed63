#include "vumo/accessor/detail/AsciiStatementText.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AsciiText.h"
#include "vumo/accessor/detail/MetadataText.h"

#include <string_view>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
using Ascii = AccessorOvri::Ascii;

constexpr char kBlanks[] = " \t";

bool isControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

/// Says whether another statement follows behind `position`. It would be lost with the metadata that is replaced.
bool hasMoreStatements(const std::string& text, std::string::size_type position)
{
    return text.find(';', position) != std::string::npos;
}

std::string inQuotes(const std::string& text)
{
    return "\"" + text + "\"";
}

/// What the character is called that cannot stand in a quoted text without an escape; null for all others.
const char* faultInQuotes(char character)
{
    if (character == '"')
        return "a double quote";
    if (character == '\\')
        return "a backslash";
    return isControl(character) ? "a control character" : nullptr;
}

/// The node's name as the target of a statement. A name with blanks needs quotes; any other stands as it is.
std::string targetText(const std::string& name)
{
    return name.find_first_of(kBlanks) == std::string::npos ? name : inQuotes(name);
}

/// What the name has that no target can carry; null when there is nothing.
const char* faultAsTarget(const std::string& name)
{
    const bool isQuoted = targetText(name) != name;
    const struct
    {
        std::string_view text;
        bool isFault;
        const char* what;
    } rows[] = {
        {std::string_view("\0", 1), true, "a zero byte"}, // where many readers of scripts end a line
        {"\n", true, "a line break"},
        {"\"", true, "a double quote"},
        {"\\", isQuoted, "a blank and a backslash"}, // between quotes a script takes it for an escape
        {";", !isQuoted, "a \";\""},
        {"//", !isQuoted, "a \"//\""},
    };
    for (const auto& row : rows)
    {
        if (row.isFault && name.find(row.text) != std::string::npos)
            return row.what;
    }
    return name == Ascii::getApplyMetadataCommandSceneFlag() ? "the meaning of the scene" : nullptr;
}
} // namespace

bool parseValue(std::string&& statement, FormattedValue& result)
{
    std::string::size_type quotes[3];
    std::string::size_type from = 0;
    for (std::string::size_type& quote : quotes)
    {
        quote = statement.find('"', from);
        if (quote == std::string::npos)
            return false;
        from = quote + 1;
    }
    const std::string::size_type last = statement.rfind('"');
    if (last == quotes[2] || hasMoreStatements(statement, last))
        return false;
    result.format = statement.substr(quotes[0] + 1, quotes[1] - quotes[0] - 1);
    result.value = std::move(statement);
    unescapeValue(result.value, from, last);
    return true;
}

bool takeName(std::string& statement, std::string& name)
{
    const std::string::size_type lineEnd = statement.rfind('\n');
    if (lineEnd == std::string::npos)
        return false;
    const std::string::size_type begin = statement.find_first_not_of(kBlanks, lineEnd + 1);
    if (begin == std::string::npos)
        return false;
    name = statement.substr(begin);
    statement.resize(lineEnd);
    const bool isQuoted = name.front() == '"';
    const std::string::size_type last = isQuoted ? name.rfind('"') : 0;
    if (hasMoreStatements(name, last))
        return false;
    if (isQuoted)
    {
        name = last == 0 ? "" : name.substr(1, last - 1);
        return !name.empty();
    }
    if (name.substr(0, name.find_last_not_of(kBlanks) + 1) == Ascii::getApplyMetadataCommandSceneFlag())
        name = AccessorOvri::getSceneAssociationsName();
    return true;
}

bool appendStructure(const Structure& structure, std::string& out, std::string& errors)
{
    std::string text;
    if (!serializeStructure(structure, text, errors))
        return false;
    std::string value;
    for (const char character : text)
    {
        if (character == '\n')
            value += "\\n";
        else if (const char* const fault = faultInQuotes(character))
        {
            errors += structureMessage(structure, std::string("a name has ") + fault);
            return false;
        }
        else
            value += character;
    }
    out += Ascii::getDataStructureCommandName() + " " + Ascii::getDataStructureCommandFormatFlag() + " " +
           inQuotes(kFormatWritten) + " " + Ascii::getDataStructureCommandAsStringFlag() + " " + inQuotes(value) +
           ";\n";
    return true;
}

bool appendAssociations(const std::string& nodeName, const Associations& associations, std::string& out,
                        std::string& errors)
{
    if (associations.empty())
        return true;
    const bool isScene = nodeName == AccessorOvri::getSceneAssociationsName();
    const char* const fault = isScene ? nullptr : faultAsTarget(nodeName);
    if (fault)
        errors += std::string("Its name has ") + fault + ", which a statement cannot carry.\n";
    std::string text;
    if (!serializeAssociations(associations, text, errors) || fault)
        return false;
    out += Ascii::getApplyMetadataCommandName() + " " + Ascii::getApplyMetadataCommandFormatFlag() + " " +
           inQuotes(kFormatWritten) + " " + Ascii::getApplyMetadataCommandValueFlag() + " \"";
    if (!appendEscapedValue(text, out))
    {
        errors +=
            "A name, an index or a value has bytes that are no character of the locale, and that would not be read "
            "back.\n";
        return false;
    }
    out += "\" \n\t\t" + (isScene ? Ascii::getApplyMetadataCommandSceneFlag() : targetText(nodeName)) + ";\n";
    return true;
}
} // namespace vumo::Data::detail
