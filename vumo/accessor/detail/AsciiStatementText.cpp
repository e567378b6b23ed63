#include "vumo/accessor/detail/AsciiStatementText.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AsciiText.h"
#include "vumo/accessor/detail/MetadataText.h"

#include <algorithm>
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

std::string quoted(const std::string& text)
{
    return "\"" + text + "\"";
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
    name = statement.substr(begin, statement.find_last_not_of(kBlanks) + 1 - begin);
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
    if (name == Ascii::getApplyMetadataCommandSceneFlag())
        name = AccessorOvri::getSceneAssociationsName();
    return true;
}

bool isBareWord(const std::string& name)
{
    const bool hasOther = std::any_of(name.begin(), name.end(), [](char character) {
        return isControl(character) || std::string(" \"\\;").find(character) != std::string::npos;
    });
    const bool isComment = name.find("//") != std::string::npos;
    return !name.empty() && !hasOther && !isComment && name != Ascii::getApplyMetadataCommandSceneFlag();
}

bool appendStructure(const Structure& structure, std::string& out)
{
    std::string text;
    if (!serializeStructure(structure, text))
        return false;
    std::string value;
    for (const char character : text)
    {
        if (character == '\n')
            value += "\\n";
        else if (character == '"' || character == '\\' || isControl(character))
            return false;
        else
            value += character;
    }
    out += Ascii::getDataStructureCommandName() + " " + Ascii::getDataStructureCommandFormatFlag() + " " +
           quoted(kFormatWritten) + " " + Ascii::getDataStructureCommandAsStringFlag() + " " + quoted(value) + ";\n";
    return true;
}

bool appendAssociations(const std::string& target, const Associations& associations, std::string& out,
                        std::string& errors)
{
    if (associations.empty())
        return true;
    std::string text;
    if (!serializeAssociations(associations, text, errors))
        return false;
    out.reserve(out.size() + text.size() + text.size() / 8); // most texts have an escape in each line of some length
    out += Ascii::getApplyMetadataCommandName() + " " + Ascii::getApplyMetadataCommandFormatFlag() + " " +
           quoted(kFormatWritten) + " " + Ascii::getApplyMetadataCommandValueFlag() + " \"";
    appendEscapedValue(text, out);
    out += "\" \n\t\t" + target + ";\n";
    return true;
}
} // namespace vumo::Data::detail
