#include "benchmarks/peers/RawText.h"

#include "benchmarks/Blocks.h"
#include "benchmarks/peers/QuotedText.h"

#include <algorithm>
#include <charconv>
#include <ostream>
#include <sstream>
#include <string_view>

namespace bench
{
namespace
{
constexpr char kHead[] = "channel\nname vertex\nstream\nname points\nindexType numeric\nstructure Record\n";
constexpr char kTail[] = "endStream\nendChannel\nendAssociations\n";

void writeRecords(const std::vector<Record>& records, std::ostream& out)
{
    out << kHead;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const Record& record = records[i];
        out << i << '\n' << record.id << ' ';
        for (const float coordinate : record.origin)
            out << coordinate << ' ';
        writeQuoted(record.label, out);
        out << (record.flag ? " true " : " false ") << record.weight << '\n';
    }
    out << kTail;
}

std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    std::ostringstream out;
    watch.time([&] { writeRecords(records, out); });
    return out.str();
}

template <class T>
char* putNumber(char* out, T number, char separator)
{
    constexpr std::size_t kLongest = 32;
    out = std::to_chars(out, out + kLongest, number).ptr;
    *out = separator;
    return out + 1;
}

/// Puts a record's line; the place is large enough.
char* putRecord(char* out, const Record& record)
{
    out = putNumber(out, record.id, ' ');
    for (const float coordinate : record.origin)
        out = putNumber(out, coordinate, ' ');
    *out++ = '"';
    for (const char c : record.label)
    {
        if (c == '"' || c == '\\' || c == '\n')
            *out++ = '\\';
        *out++ = c == '\n' ? 'n' : c;
    }
    const std::string_view flag = record.flag ? "\" true " : "\" false ";
    out = std::copy(flag.begin(), flag.end(), out);
    return putNumber(out, record.weight, '\n');
}

/// Hands a line on, as far as those who read along are to see it.
void writeLine(std::ostream& out, const char* line, const char* end)
{
    out.write(line, end - line);
    out.flush();
}

bool isRawText(const std::string& text, const std::vector<Record>& records)
{
    Stopwatch watch;
    return fromCharsReader().read(text, watch) == digestOf(records);
}

/// Takes values from a text that is known to be well-formed but for what its author may have got wrong.
class Parser
{
public:
    explicit Parser(std::string_view text) : mNext(text.data()), mEnd(text.data() + text.size()) {}

    bool startsWith(std::string_view word) const
    {
        return static_cast<std::size_t>(mEnd - mNext) >= word.size() && std::string_view(mNext, word.size()) == word;
    }

    void skip(std::string_view word)
    {
        if (!startsWith(word))
            throw WrongResult("not the expected text");
        mNext += word.size();
    }

    /// A number and the blank or newline after it.
    template <class T>
    void read(T& number)
    {
        const std::from_chars_result result = std::from_chars(mNext, mEnd, number);
        if (result.ec != std::errc() || result.ptr == mEnd)
            throw WrongResult("not a number");
        mNext = result.ptr + 1;
    }

    void read(bool& flag)
    {
        flag = startsWith("true ");
        skip(flag ? "true " : "false ");
    }

    /// A text between double quotes and the blank after it, which replaces the one in `text`.
    void read(std::string& text)
    {
        text.clear();
        skip("\"");
        while (mNext != mEnd && *mNext != '"')
        {
            char c = *mNext++;
            if (c == '\\' && mNext != mEnd)
            {
                c = *mNext++;
                if (c == 'n')
                    c = '\n';
            }
            text.push_back(c);
        }
        skip("\" ");
    }

private:
    const char* mNext;
    const char* mEnd;
};

void readElement(Parser& parser, std::string& label, BlockMap<unsigned int>::Map& blocks)
{
    unsigned int index = 0;
    Block block{};
    parser.read(index);
    parser.read(block.id);
    for (float& coordinate : block.origin)
        parser.read(coordinate);
    parser.read(label);
    parser.read(block.flag);
    parser.read(block.weight);

    std::unique_ptr<char[]> data(new char[sizeof(Block)]);
    block.label = strdup(label.c_str());
    std::memcpy(data.get(), &block, sizeof(block));
    blocks.emplace_hint(blocks.end(), index, std::move(data));
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    BlockMap<unsigned int> blocks;
    watch.time([&] {
        Parser parser(text);
        std::string label;
        parser.skip(kHead);
        while (!parser.startsWith(kTail))
            readElement(parser, label, blocks.map());
    });
    return blocks.digest();
}
} // namespace

TextWriter ostreamWriter()
{
    return {write, isRawText};
}

TextReader fromCharsReader()
{
    return {rawText, read};
}

std::string exactRawText(const std::vector<Record>& records, Stopwatch& watch)
{
    std::ostringstream text;
    watch.time([&] {
        char line[256]; // the records' labels are short
        text << kHead;
        for (std::size_t i = 0; i < records.size(); ++i)
        {
            writeLine(text, line, putNumber(line, i, '\n'));
            writeLine(text, line, putRecord(line, records[i]));
        }
        text << kTail;
    });
    return text.str();
}

std::string rawText(const std::vector<Record>& records)
{
    Stopwatch watch;
    return write(records, watch);
}
} // namespace bench
