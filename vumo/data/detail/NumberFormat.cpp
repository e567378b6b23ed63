#include "vumo/data/detail/NumberFormat.h"

#include "vumo/data/detail/DecimalDigits.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <locale>
#include <sstream>

namespace vumo::Data::detail
{
namespace
{
constexpr std::ios::fmtflags kFloatFormat = std::ios::floatfield | std::ios::showpoint | std::ios::uppercase;
constexpr std::ios::fmtflags kHexFloat = std::ios::fixed | std::ios::scientific;
constexpr std::streamsize kDefaultPrecision = 6;

char* putText(char* out, const char* begin, const char* end)
{
    return std::copy(begin, end, out);
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

/// Puts the digits with a point behind the first `whole` of them, and zeros where there are fewer.
char* putWithPoint(char* out, const char* begin, const char* end, int whole)
{
    const auto count = static_cast<int>(end - begin);
    if (whole >= count)
        return std::fill_n(putText(out, begin, end), whole - count, '0');
    out = putText(out, begin, begin + whole);
    *out++ = '.';
    return putText(out, begin + whole, end);
}

/// Puts a number as printf does for "%g": zeros at the end left out, and an exponent for what is very small, or
/// larger than its digits can tell.
char* putGeneral(char* out, const DecimalDigits& number, int precision)
{
    constexpr int kLeastPlainExponent = -4;
    char digits[kMaxDecimalDigits + 3];
    const char* end = std::to_chars(digits, digits + sizeof(digits), number.digits).ptr;
    while (end[-1] == '0')
        --end;
    if (number.exponent >= precision || number.exponent < kLeastPlainExponent)
        return putExponent(putWithPoint(out, digits, end, 1), number.exponent);
    if (number.exponent >= 0)
        return putWithPoint(out, digits, end, number.exponent + 1);
    *out++ = '0';
    *out++ = '.';
    return putText(std::fill_n(out, -number.exponent - 1, '0'), digits, end);
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

bool NumberFormat::hasHexFloats() const
{
    return (mFlags & std::ios::floatfield) == kHexFloat;
}

void NumberFormat::appendFloat(std::string& text, double value) const
{
    const bool isCommon = mFlags == std::ios::fmtflags{} && mPrecision <= kMaxDecimalDigits && std::isfinite(value);
    if (!isCommon)
    {
        appendUncommonFloat(text, value);
        return;
    }
    char chars[kMaxDecimalDigits + 8]; // a sign, "0.000" or a point and an exponent
    char* end = chars;
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
    text.append(chars, end);
}

void NumberFormat::appendUncommonFloat(std::string& text, double value) const
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
    char chars[512]; // a double in fixed notation with some 200 places behind the point
    for (const auto& entry : kFormats)
    {
        if (mFlags != entry.flags || mPrecision > static_cast<std::streamsize>(sizeof(chars)))
            continue;
        const auto result =
            std::to_chars(chars, chars + sizeof(chars), value, entry.format, static_cast<int>(mPrecision));
        if (result.ec == std::errc())
        {
            text.append(chars, result.ptr);
            return;
        }
    }
    appendByStream(text, value);
}

void NumberFormat::appendByStream(std::string& text, double value) const
{
    std::ostringstream out;
    out.exceptions(std::ios::badbit); // or a lack of memory would cut the text, and nobody would know
    out.imbue(std::locale::classic());
    out.flags(mFlags);
    out.precision(mPrecision);
    out << value;
    text += out.str();
}
} // namespace vumo::Data::detail
