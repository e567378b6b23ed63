#include "benchmarks/peers/LoopText.h"

#include "benchmarks/peers/RawText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <sstream>
#include <string_view>

namespace bench
{
namespace
{
constexpr std::size_t kLongestNumber = 32;

/// Puts the fewest digits.
struct Shortest
{
    template <class T>
    static char* put(char* out, T number)
    {
        return std::to_chars(out, out + kLongestNumber, number).ptr;
    }
};

/// Puts six significant digits as "%g" does. A number that has no more than those needs no exact arithmetic: a product
/// with a power of ten is less than a half off.
struct SixDigits
{
    static constexpr int kDigits = 6;

    static char* put(char* out, double number)
    {
        static constexpr double kPowersOfTen[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
        constexpr int kLeast = -4; // the exponent of the first of them
        if (std::signbit(number))
            *out++ = '-';
        number = std::abs(number);
        if (number < kPowersOfTen[0] || number >= 999'999.5)
            return out + std::snprintf(out, kLongestNumber, "%g", number);

        int binary = 0;
        std::frexp(number, &binary);
        int exponent = (binary * 1233) >> 12; // 1233 / 2^12 is the logarithm of 2; right, or one too large
        if (number < kPowersOfTen[exponent - kLeast])
            --exponent;
        const auto digits = static_cast<unsigned int>(number * scaleOf(exponent) + 0.5);
        return putDigits(out, digits, exponent);
    }

private:
    static double scaleOf(int exponent)
    {
        static constexpr double kScales[] = {1e9, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3, 1e2, 1e1, 1e0};
        return kScales[exponent + 4];
    }

    static char* putDigits(char* out, unsigned int digits, int exponent)
    {
        char text[kDigits];
        for (int i = kDigits - 1; i >= 0; --i, digits /= 10)
            text[i] = static_cast<char>('0' + digits % 10);
        int count = kDigits;
        while (count > 1 && text[count - 1] == '0')
            --count;
        if (exponent < 0)
        {
            std::memcpy(out, "0.000", 5);
            std::memcpy(out + 1 - exponent, text, kDigits);
            return out + 1 - exponent + count;
        }
        const int whole = exponent + 1;
        std::memcpy(out, text, kDigits);
        if (count <= whole)
            return out + whole;
        out[whole] = '.';
        std::memcpy(out + whole + 1, text + whole, static_cast<std::size_t>(kDigits - whole));
        return out + count + 1;
    }
};

template <class Numbers, class T>
char* putNumber(char* out, T number, char separator)
{
    out = Numbers::put(out, number);
    *out = separator;
    return out + 1;
}

/// Puts a record's line; the place is large enough.
template <class Floats>
char* putRecord(char* out, const Record& record)
{
    out = putNumber<Shortest>(out, record.id, ' ');
    for (const float coordinate : record.origin)
        out = putNumber<Floats>(out, coordinate, ' ');
    *out++ = '"';
    for (const char c : record.label)
    {
        if (c == '"' || c == '\\' || c == '\n')
            *out++ = '\\';
        *out++ = c == '\n' ? 'n' : c;
    }
    const std::string_view flag = record.flag ? "\" true " : "\" false ";
    out = std::copy(flag.begin(), flag.end(), out);
    return putNumber<Floats>(out, record.weight, '\n');
}

/// Hands a line on, as far as those who read along are to see it.
void writeLine(std::ostream& out, const char* line, const char* end)
{
    out.write(line, end - line);
    out.flush();
}

template <class Floats>
std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    std::ostringstream text;
    watch.time([&] {
        char line[256]; // the records' labels are short
        text << kRawHead;
        for (std::size_t i = 0; i < records.size(); ++i)
        {
            writeLine(text, line, putNumber<Shortest>(line, i, '\n'));
            writeLine(text, line, putRecord<Floats>(line, records[i]));
        }
        text << kRawTail;
    });
    return text.str();
}

bool isRightText(const std::string& text, const std::vector<Record>& records)
{
    return text == rawText(records);
}
} // namespace

TextWriter loopWriter()
{
    return {write<SixDigits>, isRightText};
}

std::string exactRawText(const std::vector<Record>& records, Stopwatch& watch)
{
    return write<Shortest>(records, watch);
}
} // namespace bench
