#include "vumo/accessor/OvriAsciiFileAccessor.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AsciiStatementText.h"
#include "vumo/accessor/detail/AsciiStatements.h"
#include "vumo/accessor/detail/FileInput.h"
#include "vumo/accessor/detail/FileRecovery.h"
#include "vumo/accessor/detail/FileTransaction.h"
#include "vumo/accessor/detail/MetadataText.h"
#include "vumo/accessor/detail/MetadataWriter.h"
#include "vumo/accessor/detail/NameFilter.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace vumo::Data
{
namespace
{
using Ascii = AccessorOvri::Ascii;
using detail::AsciiStatement;
using detail::AsciiTail;

using AssociationsMap = std::map<std::string, Associations>;

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

/// Registers the structure that the statement declares, if it is wanted.
bool readStructure(std::string&& text, detail::NameFilter& wanted, std::string& errors)
{
    detail::FormattedValue declared;
    if (!detail::parseValue(std::move(text), declared))
    {
        errors += "Error tokenizing format/value for structure.";
        return false;
    }
    const Ref<Structure> structure(detail::deserializeStructure(declared.format, declared.value, errors));
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
    detail::FormattedValue applied;
};

bool collectAssociations(std::string&& text, detail::NameFilter& wanted, std::vector<PendingAssociations>& pending,
                         std::string& errors)
{
    PendingAssociations entry;
    if (!detail::takeName(text, entry.name))
    {
        errors += "Could not find Associations name.";
        return false;
    }
    if (!wanted.accept(entry.name))
        return true;
    if (!detail::parseValue(std::move(text), entry.applied))
    {
        errors += "Error tokenizing format/value for associations.";
        return false;
    }
    pending.push_back(std::move(entry));
    return true;
}

bool readAssociations(const std::vector<PendingAssociations>& pending, AssociationsMap& result, std::string& errors)
{
    for (const PendingAssociations& entry : pending)
    {
        Associations associations;
        if (!detail::deserializeAssociations(entry.applied.format, entry.applied.value, associations, errors))
            return false;
        result.emplace(entry.name, associations); // the statement nearest the end of the file came first
    }
    return true;
}

bool readStatements(AsciiTail& tail, detail::NameFilter& structures, detail::NameFilter& associations,
                    AssociationsMap& result, std::string& errors)
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

constexpr detail::MetadataForm kStatements = {detail::appendStructure,
                                              detail::appendAssociations,
                                              false,
                                              "Could not write structure chunk to file.",
                                              "Could not write node associations statement to file.",
                                              "Could not write scene associations statement to file."};

/// Gives the size of the file. False when that failed.
bool seekToEnd(std::istream& file, std::streamoff& size)
{
    file.seekg(0, std::ios::end);
    size = file.tellg();
    return size >= 0;
}

/// What a search for the metadata says that had found so much of the tail when it failed.
const char* searchFault(const std::istream& file, const AsciiTail& tail)
{
    const bool isRead = file.eof(); // and a seek has failed otherwise
    if (tail.trailer < 0)
        return isRead ? "Could not read trailer." : "Could not seek to trailer start.";
    return isRead ? "Failed reading line while searching metadata start."
                  : "Could not seek to the first metadata block.";
}

bool findTail(std::istream& file, AsciiTail& tail, std::string& errors)
{
    std::string ignored;
    if (!seekToEnd(file, tail.size) || !detail::findAsciiTail(file, detail::eAsciiTexts::kUnwanted, tail, ignored))
    {
        errors += searchFault(file, tail);
        return false;
    }
    const bool allComplete = std::all_of(tail.statements.begin(), tail.statements.end(),
                                         [](const AsciiStatement& statement) { return statement.isComplete(); });
    if (!allComplete)
        errors += "Failed reading line while searching metadata end.";
    else if (tail.trailer < 0)
        errors += "Could not find trailer prefix.";
    return allComplete && tail.trailer >= 0;
}

/// Where the part of the file begins that a write replaces.
std::streamoff regionStart(const AsciiTail& tail)
{
    return tail.statements.empty() ? tail.trailer : std::min(tail.trailer, tail.statements.back().begin);
}

/// Appends what stands between two positions.
bool appendBytes(std::istream& file, std::streamoff from, std::streamoff to, std::string& bytes, std::string& errors)
{
    const std::string::size_type oldSize = bytes.size();
    bytes.resize(oldSize + static_cast<std::string::size_type>(to - from));
    if (!file.seekg(from))
        errors += "Failed to seek to the trailer position.";
    else if (!file.read(&bytes[oldSize], to - from))
        errors += "Failed to read the file trailer.";
    return static_cast<bool>(file);
}

/// Reads what stays of that part: the lines above the trailer line, and those from it on.
bool readKept(std::istream& file, const AsciiTail& tail, std::string& above, std::string& trailer, std::string& errors)
{
    const auto keep = [&](std::streamoff from, std::streamoff to) {
        const std::streamoff split = std::clamp(tail.trailer, from, to);
        return (from == split || appendBytes(file, from, split, above, errors)) &&
               (split == to || appendBytes(file, split, to, trailer, errors));
    };
    std::streamoff position = regionStart(tail);
    for (auto statement = tail.statements.rbegin(); statement != tail.statements.rend(); ++statement)
    {
        if (!keep(position, statement->begin))
            return false;
        position = statement->next;
    }
    return keep(position, tail.size);
}

} // namespace

bool OvriAsciiFileAccessor::write(std::string& errors) const
{
    const detail::File file(fileName(), detail::File::eMode::kUpdate);
    if (!detail::beginWriting(file, fileName(), errors))
        return false;
    detail::FileInput in(file);
    AsciiTail tail;
    std::string content;
    std::string trailer;
    if (!findTail(in, tail, errors) || !readKept(in, tail, content, trailer, errors) ||
        !detail::appendMetadata(kStatements, structures(), associations(), content, errors))
    {
        return false;
    }
    content += trailer;
    const auto start = static_cast<std::uint64_t>(regionStart(tail));
    detail::FileChange change(start + content.size(), "Could not truncate the file.");
    change.add(start, std::move(content), "Could not seek to metadata start.", "Failed to append the file trailer.");
    return detail::FileTransaction(file, fileName(), durability()).run(change, errors);
}

bool OvriAsciiFileAccessor::isFileSupported(const std::string& fileName) const
{
    const detail::File file(fileName, detail::File::eMode::kRead);
    detail::FileInput in(file);
    return in && headerFault(in).empty();
}

bool OvriAsciiFileAccessor::performRead(const std::set<std::string>* structureNames,
                                        const std::set<std::string>* associationNames, std::string& errors)
{
    if (fileName().empty())
    {
        errors = "Empty file name.";
        return false;
    }
    const detail::File file(fileName(), detail::File::eMode::kRead);
    detail::FileInput in(file);
    if (!in)
    {
        errors = "Could not open " + fileName();
        return false;
    }
    std::string fault = headerFault(in);
    if (!fault.empty())
    {
        errors = fault;
        return false;
    }
    AsciiTail tail;
    if (!seekToEnd(in, tail.size))
    {
        errors += "Could not seek to end.";
        return false;
    }
    if (!detail::findAsciiTail(in, detail::eAsciiTexts::kWanted, tail, fault))
    {
        errors = fault;
        return false;
    }
    detail::NameFilter structures(structureNames);
    detail::NameFilter wanted(associationNames);
    return readStatements(tail, structures, wanted, associations(), errors);
}

bool OvriAsciiFileAccessor::Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Print& request)
{
    return vumo::detail::debugObject("vumo::Data::OvriAsciiFileAccessor", object, request);
}

bool OvriAsciiFileAccessor::Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
