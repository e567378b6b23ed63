#include "vumo/accessor/detail/AsciiReader.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AsciiStatements.h"
#include "vumo/accessor/detail/AsciiText.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/NameFilter.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <cstdlib>
#include <istream>
#include <utility>
#include <vector>

namespace vumo::Data::detail
{
namespace
{
using Ascii = AccessorOvri::Ascii;

using AssociationsMap = std::map<std::string, Associations>;

constexpr char kBlanks[] = " \t";

/// The first line without its end; of a long one only how it begins and ends. False for an empty file.
bool readFirstLine(std::istream& in, std::string& line)
{
    constexpr std::string::size_type kBlock = 1024;
    std::string block(kBlock, '\0');
    bool isEmptyFile = true;
    bool hasEnded = false;
    while (!hasEnded && in)
    {
        in.read(block.data(), kBlock);
        block.resize(static_cast<std::string::size_type>(in.gcount()));
        isEmptyFile = isEmptyFile && block.empty();
        hasEnded = block.find('\n') != std::string::npos;
        line.append(block, 0, block.find('\n'));
        if (line.size() > 2 * kBlock)
            line.erase(kBlock, line.size() - 2 * kBlock);
    }
    in.clear();
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return !isEmptyFile;
}

/// Empty, or what is wrong with the first line of the file.
std::string headerFault(std::istream& in)
{
    constexpr int kLastUnsupportedYear = 2013;
    constexpr std::string::size_type kYearDigits = 4;
    const std::string start = Ascii::getHeaderPrefix() + " ";
    const std::string end = " scene";

    std::string line;
    if (!readFirstLine(in, line))
        return "Error reading header.";
    if (line.size() < start.size() + kYearDigits + end.size())
        return "Header too small.";
    if (line.compare(0, start.size(), start) != 0)
        return "Unexpected header start.";
    if (line.compare(line.size() - end.size(), end.size(), end) != 0)
        return "Unexpected header end.";
    if (std::atoi(line.substr(start.size(), kYearDigits).c_str()) <= kLastUnsupportedYear)
        return "Unsupported year.";
    return "";
}

/// Takes the ";" off the end of a statement, and the carriage returns off the ends of its lines.
void stripText(std::string& text)
{
    text.pop_back();
    if (text.find('\r') == std::string::npos)
        return;
    std::string::size_type kept = 0;
    for (std::string::size_type i = 0; i < text.size(); ++i)
    {
        const bool endsLine = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (!endsLine)
            text[kept++] = text[i];
    }
    text.resize(kept);
}

/// A serialized object and the name of the format that wrote it.
struct FormattedValue
{
    std::string format;
    std::string value;
};

/// Says whether another statement follows behind `position`. It would be lost with the metadata that is replaced.
bool hasMoreStatements(const std::string& text, std::string::size_type position)
{
    return text.find(';', position) != std::string::npos;
}

/// Takes the format from between the first two double quotes of a statement, and the value, unescaped, from between
/// the third and the last. False when there are too few of them, or when another statement follows on the line.
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

/// Cuts the last line, with the node's name, off an associations statement that has lost its ";". The name stands
/// between double quotes, or is all that follows the leading blanks. The name of the scene is the scene associations
/// name. False when there is no name, or another statement after it.
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

/// Registers the structure that the statement declares, if it is wanted.
bool readStructure(std::string&& text, NameFilter& wanted, std::string& errors)
{
    FormattedValue declared;
    if (!parseValue(std::move(text), declared))
        return refuse(errors, "Error tokenizing format/value for structure.");
    const Ref<Structure> structure(deserializeStructure(declared.format, declared.value, errors));
    const bool isFirst = structure && !Structure::structureByName(structure->name()); // the nearest to the file's end
    if (isFirst && wanted.accept(structure->name()))
        Structure::registerStructure(*structure);
    return static_cast<bool>(structure);
}

/// An associations statement whose name is wanted. It waits until the structures that it needs are read, which
/// stand above it.
struct PendingAssociations
{
    std::string name;
    FormattedValue applied;
};

bool collectAssociations(std::string&& text, NameFilter& wanted, std::vector<PendingAssociations>& pending,
                         std::string& errors)
{
    PendingAssociations entry;
    if (!takeName(text, entry.name))
        return refuse(errors, "Could not find Associations name.");
    if (!wanted.accept(entry.name))
        return true;
    if (!parseValue(std::move(text), entry.applied))
        return refuse(errors, "Error tokenizing format/value for associations.");
    pending.push_back(std::move(entry));
    return true;
}

bool readAssociations(const std::vector<PendingAssociations>& pending, AssociationsMap& result, std::string& errors)
{
    for (const PendingAssociations& entry : pending)
    {
        Associations associations;
        if (!deserializeAssociations(entry.applied.format, entry.applied.value, associations, errors))
            return false;
        result.emplace(entry.name, associations); // the statement nearest the end of the file came first
    }
    return true;
}

bool readStatements(AsciiTail& tail, NameFilter& structures, NameFilter& associations, AssociationsMap& result,
                    std::string& errors)
{
    std::vector<PendingAssociations> pending;
    for (AsciiStatement& statement : tail.statements)
    {
        if (statement.isComplete())
            stripText(statement.text);
        const bool isRead = statement.command == AsciiStatement::kDataStructure
                                ? readStructure(std::move(statement.text), structures, errors)
                                : collectAssociations(std::move(statement.text), associations, pending, errors);
        if (!isRead)
            return false;
    }
    return readAssociations(pending, result, errors);
}
} // namespace

bool AsciiReader::checkHeader(std::istream& in, std::string& errors)
{
    const std::string fault = headerFault(in);
    return fault.empty() || replaceErrors(errors, fault);
}

bool AsciiReader::readMetadata(std::istream& in, const std::set<std::string>* structureNames,
                               const std::set<std::string>* associationNames,
                               std::map<std::string, Associations>& associations, std::string& errors)
{
    if (!checkHeader(in, errors))
        return false;
    AsciiTail tail;
    if (!tail.measure(in))
        return refuse(errors, "Could not seek to end.");
    std::string fault;
    if (!findAsciiTail(in, eAsciiTexts::kWanted, tail, fault))
        return replaceErrors(errors, fault);
    NameFilter structures(structureNames);
    NameFilter wanted(associationNames);
    return readStatements(tail, structures, wanted, associations, errors);
}
} // namespace vumo::Data::detail
