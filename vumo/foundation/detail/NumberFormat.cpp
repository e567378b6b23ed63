#include "vumo/foundation/detail/NumberFormat.h"

#include "vumo/foundation/detail/CharacterWord.h"
#include "vumo/foundation/detail/DecimalDigits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>

namespace vumo::detail
{
namespace
{
constexpr std::ios::fmtflags kFloatFormat = std::ios::floatfield | std::ios::showpoint | std::ios::uppercase;
constexpr std::streamsize kDefaultPrecision = 6;

constexpr std::size_t kDigitsSize = 24; // of a field that is copied as a whole, which takes fewer steps than its digits
static_assert(kDigitsSize >= kMaxDecimalDigits);

/// Room for the longest text that putGeneral() makes, a sign, "0.000" or a point and an exponent, and for what the
/// copies of whole fields put after it.
constexpr std::size_t kGeneralRoom = 2 * kDigitsSize + 8;

/// Puts exactly that many digits.
void putDigits(char* out, std::uint64_t number, int count)
{
    for (char* digit = out + count; digit != out; number /= 10)
        *--digit = static_cast<char>('0' + number % 10);
}

/// Puts a minus or nothing, without a branch: on the signs of random numbers it would be mispredicted.
char* putSign(char* out, bool isNegative)
{
    *out = '-';
    return out + static_cast<int>(isNegative);
}

/// Puts "e" and an exponent of two digits at least.
char* putExponent(char* out, int exponent)
{
    const int magnitude = std::abs(exponent);
    const int count = magnitude < 100 ? 2 : 3; // no double has more
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    putDigits(out, static_cast<std::uint64_t>(magnitude), count);
    return out + count;
}

/// The significant digits of a positive number, without zeros at the end, and the exponent of the first.
struct DigitText
{
    char field[2 * kDigitsSize]; // from the first digit on there is one to be copied as a whole
    int begin = 0;               // of the digits in it
    int count = 0;
    int exponent = 0;

    /// Puts the digits from that one on, and what stands after them.
    void put(char* out, int from) const { std::memcpy(out, field + begin + from, kDigitsSize); }
};

DigitText digitTextOf(const DecimalDigits& number, int count)
{
    DigitText text;
    text.exponent = number.exponent;
    putDigits(text.field, number.digits, count);
    while (text.field[count - 1] == '0')
        --count;
    text.count = count;
    return text;
}

/// The same of up to eight digits, which are made at once and stay in a register: stored one by one and read back as
/// a field they take twice as long.
struct DigitOctet
{
    static constexpr int kSize = 8;

    DigitOctet(const DecimalDigits& number, int precision) : exponent(number.exponent)
    {
        static constexpr std::uint32_t kFillers[] = {100'000'000, 10'000'000, 1'000'000, 100'000, 10'000,
                                                     1'000,       100,        10,        1};
        // Eight digits are two numbers of four, then four of two, then eight of one, the first in the lowest place.
        // Products with 10486 / 2^20 and 103 / 2^10 are quotients by 100 and 10.
        const auto eight = static_cast<std::uint32_t>(number.digits) * kFillers[precision];
        const std::uint64_t fours = eight / 10'000 | static_cast<std::uint64_t>(eight % 10'000) << 32;
        const std::uint64_t hundreds = (fours * 10'486 >> 20) & 0x0000'007F'0000'007F;
        const std::uint64_t twos = hundreds | (fours - hundreds * 100) << 16;
        const std::uint64_t tens = (twos * 103 >> 10) & 0x000F'000F'000F'000F;
        constexpr std::uint64_t kZeros = 0x3030'3030'3030'3030; // as characters
        const std::uint64_t ones = tens | (twos - tens * 10) << 8;
        count = kSize - __builtin_clzll(ones) / 8; // there is a digit that is not zero
        text = ones + kZeros;
    }

    void put(char* out, int from) const { storeCharacters(out, text >> (8 * from)); }

    std::uint64_t text;
    int count;
    int exponent;
};

/// The fewest digits that tell a positive number from its neighbours.
template <class T>
DigitText shortestDigits(T value)
{
    DigitText text;
    char* const end = std::to_chars(text.field, text.field + kDigitsSize, value, std::chars_format::scientific).ptr;
    char* const exponent = end[-4] == 'e' ? end - 4 : end - 5; // "e+05" or "e+100"
    const bool isNegative = exponent[1] == '-';
    std::from_chars(exponent + 2, end, text.exponent);
    text.exponent = isNegative ? -text.exponent : text.exponent;
    if (text.field[1] == '.')
        text.field[++text.begin] = text.field[0]; // over the point
    text.count = static_cast<int>(exponent - text.field) - text.begin;
    return text;
}

/// Puts a number as printf does for "%g" with that precision: no zeros at the end, and an exponent for what is very
/// small, or larger than so many digits can tell.
template <class Digits>
inline char* putGeneral(char* out, const Digits& number, int precision)
{
    static constexpr char kLeadingZeros[] = "0.000";
    constexpr int kLeastPlainExponent = -4; // the rule of "%g"
    const int count = number.count;
    const bool isPlain = number.exponent >= kLeastPlainExponent && number.exponent < precision;
    if (isPlain && number.exponent < 0)
    {
        std::memcpy(out, kLeadingZeros, sizeof(kLeadingZeros));
        out += 1 - number.exponent;
        number.put(out, 0);
        return out + count;
    }
    const int whole = isPlain ? number.exponent + 1 : 1;
    number.put(out, 0);
    if (count > whole)
    {
        out[whole] = '.';
        number.put(out + whole + 1, whole);
        out += count + 1;
    }
    else
        out = std::fill_n(out + count, whole - count, '0');
    return isPlain ? out : putExponent(out, number.exponent);
}

/// The place of the choice among the words that a stream keeps for its users. Zero, as in a new stream, is "not exact".
int exactNumbersWord()
{
    static const int word = std::ios_base::xalloc();
    return word;
}

template <class T>
void appendExact(TextBuilder& text, T value)
{
    // From the least of these numbers to below the end the shortest text of to_chars(), plain where that is no longer,
    // is the text made below: 100000 is the next number for which they differ, 0.0009 the last before.
    constexpr T kLeastUsual = T(1e-3);
    constexpr T kEndOfUsual = T(1e5);
    if (std::abs(value) >= kLeastUsual && std::abs(value) < kEndOfUsual)
    {
        char* const begin = text.room(kGeneralRoom);
        text.setEnd(std::to_chars(begin, begin + kGeneralRoom, value).ptr);
        return;
    }
    const bool isCommon = std::isfinite(value) && value != 0;
    const DigitText digits = isCommon ? shortestDigits(std::abs(value)) : DigitText();
    if (digits.count <= kDefaultPrecision && !std::isnormal(value))
    {
        NumberFormat().append(text, value); // for a subnormal number other digits, which read back as well
        return;
    }
    char* end = text.room(kGeneralRoom);
    end = putSign(end, value < 0);
    text.setEnd(putGeneral(end, digits, std::max(digits.count, static_cast<int>(kDefaultPrecision))));
}
} // namespace

NumberFormat::NumberFormat(std::ios_base& out)
    : mFlags(out.flags() & kFloatFormat),
      mPrecision(out.precision()),
      mIsExact(out.iword(exactNumbersWord()) != 0)
{
    if (mPrecision < 0)
        mPrecision = kDefaultPrecision; // which is what streams make of it
    const bool isGeneral = (mFlags & std::ios::floatfield) == std::ios::fmtflags{};
    if (isGeneral && mPrecision == 0)
        mPrecision = 1; // likewise
}

NumberFormat NumberFormat::exact()
{
    NumberFormat format;
    format.mIsExact = true;
    return format;
}

void NumberFormat::setExact(std::ios_base& out, bool isExact)
{
    out.iword(exactNumbersWord()) = isExact ? 1 : 0;
}

void NumberFormat::appendExactFloat(TextBuilder& text, float value)
{
    appendExact(text, value);
}

void NumberFormat::appendExactFloat(TextBuilder& text, double value)
{
    appendExact(text, value);
}

void NumberFormat::appendFloat(TextBuilder& text, double value) const
{
    const bool isCommon = mFlags == std::ios::fmtflags{} && mPrecision <= kMaxDecimalDigits && std::isfinite(value);
    if (!isCommon)
    {
        appendUncommonFloat(text, value);
        return;
    }
    char* end = text.room(kGeneralRoom);
    end = putSign(end, std::signbit(value));
    if (value == 0)
        *end++ = '0';
    else
    {
        const auto precision = static_cast<int>(mPrecision);
        const std::optional<DecimalDigits> digits = roundToDigits(std::abs(value), precision);
        if (!digits)
        {
            appendUncommonFloat(text, value);
            return;
        }
        end = precision <= DigitOctet::kSize ? putGeneral(end, DigitOctet(*digits, precision), precision)
                                             : putGeneral(end, digitTextOf(*digits, precision), precision);
    }
    text.setEnd(end);
}

void NumberFormat::appendUncommonFloat(TextBuilder& text, double value) const
{
    static constexpr struct
    {
        std::ios::fmtflags flags;
        std::chars_format format;
    } kFormats[] = {
        {std::ios::fmtflags{}, std::chars_format::general},
        {std::ios::fixed, std::chars_format::fixed},
        {std::ios::scientific, std::chars_format::scientific},
    };
    constexpr std::size_t kRoom = 512; // a double in fixed notation has up to 309 digits before the point
    char* const begin = text.room(kRoom);
    for (const auto& entry : kFormats)
    {
        if (mFlags != entry.flags || mPrecision > static_cast<std::streamsize>(kRoom))
            continue;
        const auto result = std::to_chars(begin, begin + kRoom, value, entry.format, static_cast<int>(mPrecision));
        if (result.ec == std::errc())
        {
            text.setEnd(result.ptr);
            return;
        }
    }
    appendByStream(text, value);
}

void NumberFormat::appendByStream(TextBuilder& text, double value) const
{
    std::ostringstream out;
    out.exceptions(std::ios::badbit); // or a lack of memory would cut the text, and nobody would know
    out.imbue(std::locale::classic());
    out.flags(mFlags);
    out.precision(mPrecision);
    out << value;
    text.append(out.str());
}
} // namespace vumo::detail
