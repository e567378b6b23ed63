#include "vumo/accessor/detail/AsciiReader.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/AsciiStatements.h"
#include "vumo/accessor/detail/AsciiText.h"
#include "vumo/accessor/detail/MetadataRead.h"
#include "vumo/accessor/detail/Refusal.h"
#include "vumo/foundation/detail/Characters.h"

#include <cstdlib>
#include <istream>
#include <string_view>
#include <utility>
#include <vector>

namespace vumo::Data::detail
{
namespace
{
using Ascii = AccessorOvri::Ascii;

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
        // Only its start and its end are looked at, and a scene without newlines may be of any size.
        if (line.size() > 2 * kBlock)
            line.erase(kBlock, line.size() - 2 * kBlock);
    }
    in.clear(); // a file may end within the block
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return !isEmptyFile;
}

/// Takes the carriage returns off the ends of lines.
std::string withoutReturns(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool endsLine = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (!endsLine)
            result += text[i];
    }
    return result;
}

/// Takes the format from between the first two double quotes of a statement, and the value, with its escapes, from
/// between the third and the last. False when there are too few of them, and when there is more text: with the metadata
/// that is replaced it would be lost.
bool findValue(std::string_view statement, std::string& format, std::string_view& value)
{
    std::size_t quotes[3];
    std::size_t from = 0;
    for (std::size_t& quote : quotes)
    {
        quote = statement.find('"', from);
        if (quote == std::string_view::npos)
            return false;
        from = quote + 1;
    }
    const std::size_t last = statement.rfind('"'); // those in between belong to the value
    if (last == quotes[2] || !trimmed(statement.substr(last + 1)).empty())
        return false;
    format = statement.substr(quotes[0] + 1, quotes[1] - quotes[0] - 1);
    value = statement.substr(from, last - from);
    return true;
}

/// Says whether the name line of a statement that has lost its ";" holds another one, outside of double quotes: it
/// begins another statement, which would be lost with the metadata that is replaced.
bool hasMoreStatements(std::string_view line)
{
    bool isOutside = true;
    for (const char character : line)
    {
        if (character == ';' && isOutside)
            return true;
        isOutside = isOutside != (character == '"');
    }
    return false;
}

/// Cuts the last line, with the node's name, off an associations statement that has lost its ";". The name stands
/// between double quotes, or is all that follows the leading blanks. The name of the scene is the scene associations
/// name. False when there is no name, or another statement after it.
bool takeName(std::string_view& statement, std::string& name)
{
    const std::size_t lineEnd = statement.rfind('\n');
    if (lineEnd == std::string_view::npos)
        return false;
    const std::size_t begin = statement.find_first_not_of(kBlanks, lineEnd + 1);
    if (begin == std::string_view::npos)
        return false;
    name = statement.substr(begin);
    statement = statement.substr(0, lineEnd);
    if (hasMoreStatements(name))
        return false;
    const std::string::size_type last = name.rfind('"');
    const bool isQuoted = name.front() == '"' && last > 0; // one quote alone is a part of the name
    if (isQuoted)
    {
        name = name.substr(1, last - 1);
        return !name.empty();
    }
    if (name.substr(0, name.find_last_not_of(kBlanks) + 1) == Ascii::getApplyMetadataCommandSceneFlag())
        name = AccessorOvri::getSceneAssociationsName();
    return true;
}

/// Takes the statements of one file, from the last to the first.
class StatementReader
{
public:
    /// Borrows the read.
    explicit StatementReader(MetadataRead& read) : mRead(read) {}

    void take(const AsciiStatement& statement, std::string_view text)
    {
        FileBlock block;
        const bool isStructure = statement.command == AsciiStatement::kDataStructure;
        block.kind = isStructure ? FileBlock::kStructure : FileBlock::kAssociations;
        block.position = static_cast<std::uint64_t>(statement.begin);
        block.length = text.size();
        block.checksum = blockChecksum({text});
        std::string stripped;
        text = text.substr(0, text.size() - (statement.isComplete() ? 1 : 0)); // less its ";"
        if (text.find('\r') != std::string_view::npos)
        {
            stripped = withoutReturns(text);
            text = stripped;
        }
        if (isStructure)
            readStructure(std::move(block), text);
        else
            collectAssociations(std::move(block), text);
    }

    /// Reads the associations, once all structures are read, which stand above them.
    void finish()
    {
        for (auto entry = mPending.rbegin(); entry != mPending.rend(); ++entry)
            mRead.readAssociations(entry->number, entry->text);
    }

private:
    struct Pending
    {
        std::size_t number;
        std::string text;
    };

    void readStructure(FileBlock block, std::string_view text)
    {
        std::string_view value;
        std::string unescaped;
        const bool hasValue = findValue(text, block.format, value) && unescapeValue(value, unescaped);
        const std::size_t number = mRead.add(std::move(block));
        if (hasValue)
            mRead.readStructure(number, unescaped);
        else
            mRead.refuseBlock(number, "Error tokenizing format/value for structure.");
    }

    void collectAssociations(FileBlock block, std::string_view text)
    {
        std::string_view value;
        std::string unescaped;
        const bool hasName = takeName(text, block.name);
        const bool hasValue = hasName && findValue(text, block.format, value);
        const std::size_t number = mRead.add(std::move(block));
        const bool isWanted = hasName && mRead.wantsAssociations(number);
        // Without a ";" nothing can begin another statement; that is sooner seen than the escapes are undone.
        const bool isPlain = !isWanted && (!mRead.keepsUnread() || value.find(';') == std::string_view::npos);
        const bool isWhole = hasValue && (isPlain || unescapeValue(value, unescaped));
        if (!hasName)
            mRead.refuseBlock(number, "Could not find Associations name.");
        else if (!isWhole && (isWanted || mRead.keepsUnread()))
            mRead.refuseBlock(number, "Error tokenizing format/value for associations.", true);
        else if (mRead.onlyLists())
            mRead.readAssociations(number, unescaped);
        else if (isWanted)
            mPending.push_back({number, std::move(unescaped)});
    }

    MetadataRead& mRead;
    std::vector<Pending> mPending;
};
} // namespace

bool AsciiReader::checkHeader(std::istream& in, std::string& errors)
{
    constexpr int kLastUnsupportedYear = 2013; // scenes carry metadata since the year after
    constexpr std::string::size_type kYearDigits = 4;
    const std::string start = Ascii::getHeaderPrefix() + " ";
    const std::string end = " scene";

    std::string line;
    if (!readFirstLine(in, line))
        return replaceErrors(errors, "Error reading header.");
    if (line.size() < start.size() + kYearDigits + end.size())
        return replaceErrors(errors, "Header too small.");
    if (line.compare(0, start.size(), start) != 0)
        return replaceErrors(errors, "Unexpected header start.");
    if (line.compare(line.size() - end.size(), end.size(), end) != 0)
        return replaceErrors(errors, "Unexpected header end.");
    if (std::atoi(line.substr(start.size(), kYearDigits).c_str()) <= kLastUnsupportedYear)
        return replaceErrors(errors, "Unsupported year.");
    return true;
}

bool AsciiReader::readMetadata(std::istream& in, MetadataRead& read, std::string& errors)
{
    if (!checkHeader(in, errors))
        return false;
    AsciiTail tail;
    if (!tail.measure(in))
        return refuse(errors, "Could not seek to end.");
    StatementReader reader(read);
    const auto take = [&](const AsciiStatement& statement, std::string_view text) { reader.take(statement, text); };
    std::string fault;
    if (!findAsciiTail(in, tail, take, fault))
        return replaceErrors(errors, fault);
    reader.finish();
    return read.finish(errors);
}

std::size_t AsciiReader::findCharacter(std::string_view statement, std::size_t character)
{
    std::string_view head = statement.substr(0, statement.find_last_not_of(';') + 1);
    std::string ignored;
    if (head.substr(0, Ascii::getApplyMetadataCommandName().size()) == Ascii::getApplyMetadataCommandName())
        takeName(head, ignored);
    std::string_view value;
    if (!findValue(head, ignored, value))
        return 0;
    return static_cast<std::size_t>(value.data() - statement.data()) + escapedPosition(value, character);
}
} // namespace vumo::Data::detail
