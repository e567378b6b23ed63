#include "tools/codec/Csv.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Indices.h"
#include "tools/codec/Json.h"
#include "tools/codec/Values.h"

#include <cstdint>
#include <istream>
#include <ostream>
#include <vector>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
using Row = std::vector<std::string>;

constexpr const char* kNumericTitle = "index";
constexpr const char* kTypePrefix = "index:"; // an index of another type, a text
constexpr const char* kFirstTitle = "index[0]";
constexpr const char* kSecondTitle = "index[1]";

/// Spreadsheets put it before a text in UTF-8.
constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

/// How a cell begins that holds bytes which are no text.
constexpr const char* kBytesStart = "{\"base64\"";

bool startsWith(const std::string& text, const std::string& start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// The text as a cell says it, before quotes.
std::string cellOf(const std::string& text)
{
    if (startsWith(text, kBytesStart)) // a text that only looks like one; no character but "{" would mark it as bytes
        return bytesJson(text);
    const std::string json = jsonText(text);
    return startsWith(json, kBytesStart) ? json : text;
}

std::string textOf(const std::string& cell)
{
    return startsWith(cell, kBytesStart) ? textFrom(parseJson(cell)) : cell;
}

std::string quoted(const std::string& cell)
{
    if (cell.find_first_of(",\"\r\n") == std::string::npos)
        return cell;
    std::string result = "\"";
    for (const char character : cell)
        result += character == '"' ? std::string("\"\"") : std::string(1, character);
    return result + "\"";
}

void writeRow(const Row& row, std::ostream& out)
{
    for (Row::size_type i = 0; i < row.size(); ++i)
        out << (i > 0 ? "," : "") << quoted(row[i]);
    out << "\n";
}

/// Appends the title and one with each place of the shape, from its level on.
void appendTitles(const std::string& title, const std::vector<unsigned int>& shape, std::size_t level, Row& row)
{
    if (level == shape.size())
    {
        row.push_back(title);
        return;
    }
    for (unsigned int i = 0; i < shape[level]; ++i)
        appendTitles(title + "[" + std::to_string(i) + "]", shape, level + 1, row);
}

Row indexTitles(const std::string& indexType)
{
    if (indexType == "numeric")
        return {kNumericTitle};
    if (indexType == "pair")
        return {kFirstTitle, kSecondTitle};
    return {kTypePrefix + cellOf(indexType)};
}

Row memberTitles(const Member& member)
{
    Row titles;
    appendTitles(cellOf(Member::name(&member)), shapeOf(member), 0, titles);
    return titles;
}

void appendIndex(const Stream& stream, const Index& index, Row& row)
{
    const std::string text = indexText(stream, index);
    const std::string::size_type separator = stream.indexType() == "pair" ? text.find(' ') : std::string::npos;
    row.push_back(cellOf(text.substr(0, separator)));
    if (separator != std::string::npos)
        row.push_back(text.substr(separator + 1));
}

void appendValues(const Handle& element, Row& row)
{
    if (element.dataType() != Member::kString)
    {
        for (const std::string& text : numberTexts(element))
            row.push_back(text);
        return;
    }
    const auto values = element.values<const char*>();
    for (unsigned int i = 0; i < values.size(); ++i)
        row.push_back(values[i] ? cellOf(values[i]) : "");
}

/// Takes rows from a text: cells between commas, in double quotes where they hold commas, quotes or line ends.
class RowReader
{
public:
    explicit RowReader(std::istream& in) : mIn(in) {}

    /// The line on which the last row began.
    unsigned long long line() const { return mLine; }

    /// False at the end of the input.
    bool next(Row& row)
    {
        mLine = mNextLine;
        row.assign(1, "");
        if (mIn.peek() == std::istream::traits_type::eof())
            return false;
        while (readCell(row.back()))
            row.emplace_back();
        return true;
    }

private:
    /// False when the cell was the last one of its row.
    bool readCell(std::string& cell)
    {
        const bool isQuoted = mIn.peek() == '"';
        if (isQuoted)
            readQuoted(cell);
        char character = 0;
        while (get(character) && character != ',')
        {
            if (character == '\n')
                return false;
            if (character == '\r' && mIn.peek() == '\n')
                continue;
            if (isQuoted || character == '"')
                throw CodecError("a double quote belongs at both ends of its cell, or twice into a quoted one");
            cell += character;
        }
        if (!mIn)
            throw CodecError("the line has no end: the text may have been cut; if it was not, add a newline");
        return true;
    }

    void readQuoted(std::string& cell)
    {
        mIn.get();
        for (char character = 0; get(character);)
        {
            if (character == '"' && mIn.peek() != '"')
                return;
            if (character == '"')
                mIn.get();
            cell += character;
        }
        throw CodecError("a cell has no closing double quote");
    }

    bool get(char& character)
    {
        if (!mIn.get(character))
            return false;
        mNextLine += character == '\n' ? 1 : 0;
        return true;
    }

    std::istream& mIn;
    unsigned long long mLine = 1;
    unsigned long long mNextLine = 1;
};

/// The index type that the first titles name, and how many titles these are.
std::string indexTypeOf(const Row& titles, std::size_t& count)
{
    count = 1;
    if (titles[0] == kNumericTitle)
        return "numeric";
    if (startsWith(titles[0], kTypePrefix))
        return textOf(titles[0].substr(std::string(kTypePrefix).size()));
    if (titles[0] != kFirstTitle || titles.size() < 2 || titles[1] != kSecondTitle)
        throw CodecError("the titles do not begin with index, index:TYPE, or index[0] and index[1]");
    count = 2;
    return "pair";
}

/// Refuses titles that are not those of the structure. Stops at the first: a structure may promise very many.
void checkTitles(const Row& titles, std::size_t place, const Structure& structure)
{
    for (const Member& member : structure)
    {
        if (Member::length(&member) > titles.size())
            throw CodecError("the titles of member " + jsonText(Member::name(&member)) + " are not all there");
        for (const std::string& expected : memberTitles(member))
        {
            if (place == titles.size() || titles[place] != expected)
                throw CodecError("title " + std::to_string(place + 1) + " is not " + jsonText(expected));
            ++place;
        }
    }
    if (place != titles.size())
        throw CodecError("title " + std::to_string(place + 1) + " belongs to no member");
}

void addRow(const Row& row, std::size_t indexCells, Stream& stream)
{
    const std::string text = indexCells == 2 ? row[0] + " " + row[1] : textOf(row[0]);
    const Index index = indexFrom(stream, text);
    Handle element(stream.structure());
    std::size_t cell = indexCells;
    for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
    {
        const Member& member = *stream.structure().member(i);
        const bool isString = Member::type(&member) == Member::kString;
        const std::uint64_t count = valueCount(member);
        at([&] { return "member " + jsonText(Member::name(&member)); },
           [&] {
               for (unsigned int k = 0; k < count; ++k, ++cell)
                   setValue(element, k, isString ? textOf(row[cell]) : row[cell]);
           });
    }
    addNewElement(stream, index, element);
}

/// Does something that is about the row that was read last.
template <class Action>
void atLine(const RowReader& rows, const Action& action)
{
    at([&] { return "line " + std::to_string(rows.line()); }, action);
}
} // namespace

void writeCsv(const Stream& stream, std::ostream& out)
{
    Row row = indexTitles(stream.indexType());
    for (const Member& member : stream.structure())
    {
        for (const std::string& title : memberTitles(member))
            row.push_back(title);
    }
    writeRow(row, out);
    const StreamIterator end = stream.cend();
    for (StreamIterator element = stream.cbegin(); element != end; ++element)
    {
        row.clear();
        appendIndex(stream, element.index(), row);
        for (unsigned int i = 0; element->setPositionByMemberIndex(i); ++i)
            appendValues(*element, row);
        writeRow(row, out);
    }
}

Stream readCsv(std::istream& in, const Structure& structure, const std::string& name)
{
    RowReader rows(in);
    Row row;
    std::size_t indexCells = 0;
    Stream stream(structure, name);
    atLine(rows, [&] {
        if (!rows.next(row))
            throw CodecError("there are no titles");
        if (startsWith(row[0], kByteOrderMark))
            row[0].erase(0, std::string(kByteOrderMark).size());
        setIndexType(stream, indexTypeOf(row, indexCells));
        checkTitles(row, indexCells, structure);
    });
    const std::size_t cells = row.size();
    for (bool isRow = true; isRow;)
    {
        atLine(rows, [&] {
            isRow = rows.next(row);
            if (isRow && row.size() != cells)
                throw CodecError(std::to_string(cells) + " cells are expected, not " + std::to_string(row.size()));
            if (isRow)
                addRow(row, indexCells, stream);
        });
    }
    return stream;
}
} // namespace vumo::codec
