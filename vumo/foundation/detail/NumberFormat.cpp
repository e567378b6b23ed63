#include "vumo/foundation/detail/NumberFormat.h"

#include "vumo/foundation/detail/DecimalDigits.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <locale>
#include <sstream>

namespace vumo::Data::detail
{
namespace
{
constexpr std::ios::fmtflags kFloatFormat = std::ios::floatfield | std::ios::showpoint | std::ios::uppercase;
constexpr std::streamsize kDefaultPrecision = 6;

constexpr std::size_t kDigitsSize = 24; // of a field that is copied as a whole, whatever it holds
static_assert(kDigitsSize >= kMaxDecimalDigits);

/// Room for the longest text that putGeneral() makes, a sign, "0.000" or a point and an exponent, and for what the
/// copies of whole fields put behind it.
constexpr std::size_t kGeneralRoom = 2 * kDigitsSize + 8;

/// Puts exactly that many digits.
void putDigits(char* out, std::uint64_t number, int count)
{
    for (char* digit = out + count; digit != out; number /= 10)
        *--digit = static_cast<char>('0' + number % 10);
}

/// Puts "e" and an exponent of two digits, as all that roundToDigits() gives have.
char* putExponent(char* out, int exponent)
{
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    *out++ = static_cast<char>('0' + std::abs(exponent) / 10);
    *out++ = static_cast<char>('0' + std::abs(exponent) % 10);
    return out;
}

/// Puts a number of that many digits as printf does for "%g": zeros at the end left out, and an exponent for what is
/// very small, or larger than its digits can tell.
char* putGeneral(char* out, const DecimalDigits& number, int precision)
{
    static constexpr char kLeadingZeros[] = "0.000";
    constexpr int kLeastPlainExponent = -4;
    char digits[2 * kDigitsSize];
    putDigits(digits, number.digits, precision);
    int count = precision;
    while (digits[count - 1] == '0')
        --count;

    const bool isPlain = number.exponent >= kLeastPlainExponent && number.exponent < precision;
    if (isPlain && number.exponent < 0)
    {
        std::memcpy(out, kLeadingZeros, sizeof(kLeadingZeros));
        out += 1 - number.exponent;
        std::memcpy(out, digits, kDigitsSize);
        return out + count;
    }
    const int whole = isPlain ? number.exponent + 1 : 1;
    std::memcpy(out, digits, kDigitsSize);
    if (count > whole)
    {
        out[whole] = '.';
        std::memcpy(out + whole + 1, digits + whole, kDigitsSize);
        out += count + 1;
    }
    else
        out += whole; // zeros before the point stay
    return isPlain ? out : putExponent(out, number.exponent);
}
} // namespace

NumberFormat::NumberFormat(const std::ios_base& out) : mFlags(out.flags() & kFloatFormat), mPrecision(out.precision())
{
    if (mPrecision < 0)
        mPrecision = kDefaultPrecision; // which is what streams make of it
    const bool isGeneral = (mFlags & std::ios::floatfield) == std::ios::fmtflags{};
    if (isGeneral && mPrecision == 0)
        mPrecision = 1; // likewise
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
    if (std::signbit(value))
        *end++ = '-';
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
        end = putGeneral(end, *digits, precision);
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
    constexpr std::size_t kRoom = 512; // a double in fixed notation with some 200 places behind the point
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
} // namespace vumo::Data::detail
