#include "vumo/accessor/detail/AsciiStatements.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/detail/BackwardLines.h"
#include "vumo/foundation/detail/Characters.h"

#include <algorithm>
#include <istream>
#include <string_view>

namespace vumo::Data::detail
{
namespace
{
using Ascii = AccessorOvri::Ascii;

/// What is longer is read a second time when the text of a statement is wanted: memory for the file, on top of that for
/// the metadata, has a limit.
constexpr std::size_t kLongestText = 128 << 20;

enum eLine
{
    kStructureLine,
    kAssociationsLine,
    kHostLine,
    kTrailerLine,
    kCommentLine,
    kContinuation,
    kOtherLine
};

bool startsWith(std::string_view text, const std::string& start, std::size_t position = 0)
{
    return text.compare(position, start.size(), start) == 0;
}

/// A word of the metadata's own is whole: a blank or the line's end follows it.
bool startsWithWord(std::string_view text, const std::string& word)
{
    return startsWith(text, word) &&
           (text.size() == word.size() || text.find_first_of(kBlanks, word.size()) == word.size());
}

bool isHostLine(std::string_view head)
{
    const std::string* const commands[] = {&Ascii::getConnectAttrCommandName(), &Ascii::getCreateNodeCommandName(),
                                           &Ascii::getSetAttrCommandName(), &Ascii::getRelationshipCommandName(),
                                           &Ascii::getSelectCommandName()};
    return std::any_of(std::begin(commands), std::end(commands),
                       [&](const std::string* command) { return startsWith(head, *command); });
}

/// Commands count at the first column only: the line with the name of a node called "select1" begins with tabs.
eLine kindOf(std::string_view head)
{
    if (startsWithWord(head, Ascii::getDataStructureCommandName()))
        return kStructureLine;
    if (startsWithWord(head, Ascii::getApplyMetadataCommandName()))
        return kAssociationsLine;
    if (isHostLine(head)) // by its first letters alone: "selectMany" is the host's, too
        return kHostLine;
    const std::size_t text = std::min(head.find_first_not_of(kBlanks), head.size());
    if (startsWith(head, Ascii::getTrailerPrefix(), text))
        return kTrailerLine;
    if (startsWith(head, "//", text))
        return kCommentLine;
    const bool isOneWord = head.find_first_of(" \t\"") == std::string_view::npos; // a node's name, not indented
    // An empty line counts as a word, so that there is a first character where it is asked for.
    const bool isContinuation = text > 0 || isOneWord || head[0] == '"' || head[0] == '-';
    return isContinuation ? kContinuation : kOtherLine;
}

/// The line with which the statement that is being read upward ends.
struct StatementEnd
{
    BackwardLines::Line line;
    bool exists = false;
    bool isName = false; ///< it is no part of a statement, unless it is the name right below a node's command

    /// The last line of a statement with that command; null where it has none.
    const BackwardLines::Line* of(eLine command) const
    {
        return exists && (!isName || command == kAssociationsLine) ? &line : nullptr;
    }

    /// Takes the next line upward into account.
    void step(const BackwardLines::Line& next, eLine kind, bool mayBeName)
    {
        const bool isEnd = next.last == ';';
        exists = exists && (isName ? mayBeName && isEnd : kind == kContinuation);
    }
};

/// Takes the statement that begins with one line and ends with another, if it has an end.
AsciiStatement statementOf(eLine kind, const BackwardLines::Line& begin, const BackwardLines::Line* end)
{
    AsciiStatement statement;
    statement.command = kind == kStructureLine ? AsciiStatement::kDataStructure : AsciiStatement::kApplyMetadata;
    statement.begin = begin.begin;
    statement.end = end ? end->end : begin.begin;
    statement.next = end ? end->next : begin.next;
    return statement;
}

bool giveText(BackwardLines& lines, const AsciiStatement& statement, const AsciiStatementTaker& take)
{
    std::string_view text;
    if (!lines.readText(statement.begin, statement.end, text))
        return false;
    take(statement, text);
    return true;
}
} // namespace

bool AsciiTail::measure(std::istream& file)
{
    file.seekg(0, std::ios::end);
    size = file.tellg();
    return size >= 0;
}

bool findAsciiTail(std::istream& in, AsciiTail& tail, const AsciiStatementTaker& take, std::string& error)
{
    BackwardLines lines(in, tail.size, take ? kLongestText : 0);
    BackwardLines::Line line;
    StatementEnd end;
    while (lines.previous(line))
    {
        const eLine kind = kindOf(line.head);
        if (kind == kHostLine)
            return true;
        const bool isTrailer = kind == kTrailerLine && tail.trailer < 0;
        const bool mayBeName = kind == kCommentLine || kind == kOtherLine || (kind == kTrailerLine && !isTrailer);
        if (line.last == ';')
            end = {line, true, mayBeName};
        if (isTrailer)
            tail.trailer = line.begin;
        if (kind == kStructureLine || kind == kAssociationsLine)
        {
            tail.statements.push_back(statementOf(kind, line, end.of(kind)));
            if (take && !giveText(lines, tail.statements.back(), take))
                break; // lines.error() says why
        }
        end.step(line, kind, mayBeName);
        if (!end.exists || !take)
            lines.forgetFrom(line.begin);
    }
    error = lines.error();
    return error.empty();
}
} // namespace vumo::Data::detail
