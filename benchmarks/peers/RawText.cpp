#include "benchmarks/peers/RawText.h"

#include "benchmarks/Blocks.h"
#include "benchmarks/peers/QuotedText.h"

#include <charconv>
#include <ostream>
#include <sstream>
#include <string_view>

namespace bench
{
namespace
{
void writeRecords(const std::vector<Record>& records, std::ostream& out)
{
    out << kRawHead;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const Record& record = records[i];
        out << i << '\n' << record.id << ' ';
        for (const float coordinate : record.origin)
            out << coordinate << ' ';
        writeQuoted(record.label, out);
        out << (record.flag ? " true " : " false ") << record.weight << '\n';
    }
    out << kRawTail;
}

std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    std::ostringstream out;
    watch.time([&] { writeRecords(records, out); });
    return out.str();
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

    /// A text between double quotes and the blank after it. The copy is the caller's to free.
    char* readText()
    {
        constexpr std::size_t kLongest = 64; // the records' labels are short
        char text[kLongest];
        char* out = text;
        skip("\"");
        while (mNext != mEnd && *mNext != '"' && out != text + kLongest - 1)
        {
            char c = *mNext++;
            if (c == '\\' && mNext != mEnd)
            {
                c = *mNext++;
                if (c == 'n')
                    c = '\n';
            }
            *out++ = c;
        }
        *out = '\0';
        skip("\" ");
        return strdup(text);
    }

private:
    const char* mNext;
    const char* mEnd;
};

/// The blocks lie in the nodes of the map: one allocation less than the library can do with, which learns only from
/// the structure how large they are.
using Blocks = std::map<unsigned int, Block>;

void readElement(Parser& parser, Blocks& blocks)
{
    unsigned int index = 0;
    parser.read(index);
    Block& block = blocks.try_emplace(blocks.end(), index)->second;
    parser.read(block.id);
    for (float& coordinate : block.origin)
        parser.read(coordinate);
    block.label = parser.readText();
    parser.read(block.flag);
    parser.read(block.weight);
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    Blocks blocks;
    watch.time([&] {
        Parser parser(text);
        parser.skip(kRawHead);
        while (!parser.startsWith(kRawTail))
            readElement(parser, blocks);
    });
    Digest digest;
    for (const auto& [index, block] : blocks)
    {
        digest.add(index);
        digest.addRecord(block);
        std::free(block.label);
    }
    return digest.sum();
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

std::string rawText(const std::vector<Record>& records)
{
    Stopwatch watch;
    return write(records, watch);
}
} // namespace bench
