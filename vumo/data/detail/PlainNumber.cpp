#include "vumo/data/detail/PlainNumber.h"

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace vumo::Data::detail
{
namespace
{
constexpr std::uint64_t kGreatestExactInteger = std::uint64_t(1) << DBL_MANT_DIG;
constexpr std::ptrdiff_t kMostDigits = 19; // whose integer never overflows 64 bits
constexpr std::ptrdiff_t kLongestExponent = 4;
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr auto kGreatestExactPower = static_cast<std::ptrdiff_t>(std::size(kPowersOfTen)) - 1;

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The parts of a number's text: +-`integer` * 10^`exponent`.
struct DecimalText
{
    std::uint64_t integer = 0;
    std::ptrdiff_t exponent = 0;
    std::ptrdiff_t digits = 0;
    bool isNegative = false;
    const char* end = nullptr; // null: not plain
};

const char* scanDigits(const char* at, const char* end, std::uint64_t& integer)
{
    for (; at != end && isDigit(*at); ++at)
        integer = integer * 10 + static_cast<std::uint64_t>(*at - '0'); // of too many digits no use is made
    return at;
}

/// Reads what follows the "e"; null when that is no short number.
const char* scanExponent(const char* at, const char* end, std::ptrdiff_t& exponent)
{
    const bool isNegative = at != end && *at == '-';
    if (isNegative || (at != end && *at == '+'))
        ++at;
    std::uint64_t number = 0;
    const char* const begin = at;
    at = scanDigits(at, end, number);
    if (at == begin || at - begin > kLongestExponent)
        return nullptr;
    const auto power = static_cast<std::ptrdiff_t>(number);
    exponent += isNegative ? -power : power;
    return at;
}

DecimalText scanDecimal(std::string_view text)
{
    DecimalText number;
    const char* at = text.data();
    const char* const end = at + text.size();
    number.isNegative = at != end && *at == '-';
    if (number.isNegative)
        ++at;
    const char* begin = at;
    at = scanDigits(at, end, number.integer);
    std::ptrdiff_t digits = at - begin;
    if (digits == 0)
        return number;
    if (at != end && *at == '.')
    {
        begin = ++at;
        at = scanDigits(at, end, number.integer);
        if (at == begin)
            return number;
        digits += at - begin;
        number.exponent = -(at - begin);
    }
    if (at != end && (*at == 'e' || *at == 'E'))
        at = scanExponent(at + 1, end, number.exponent);
    number.digits = digits;
    number.end = at;
    return number;
}

/// Says whether one floating-point operation makes the double out of the parts.
bool isExact(const DecimalText& number)
{
    return FLT_EVAL_METHOD == 0 && number.digits <= kMostDigits && number.integer <= kGreatestExactInteger &&
           number.exponent >= -kGreatestExactPower && number.exponent <= kGreatestExactPower;
}

double exactDouble(const DecimalText& number)
{
    const auto integer = static_cast<double>(number.integer);
    const double magnitude =
        number.exponent < 0 ? integer / kPowersOfTen[-number.exponent] : integer * kPowersOfTen[number.exponent];
    return number.isNegative ? -magnitude : magnitude;
}

/// Says whether the double lies halfway between two floats: then the text, which the double may differ from, is on
/// either side of it. From any other double to the float is the way that the text itself would go. For doubles in
/// the range of normal floats, or 0.
bool isHalfwayBetweenFloats(double value)
{
    constexpr std::uint64_t kHalf = std::uint64_t(1) << (DBL_MANT_DIG - FLT_MANT_DIG - 1);
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return (bits & (kHalf * 2 - 1)) == kHalf;
}

template <class T>
const char* readByLibrary(const DecimalText& number, std::string_view text, T& value)
{
    const std::from_chars_result result = std::from_chars(text.data(), number.end, value);
    return result.ec == std::errc() && result.ptr == number.end ? number.end : nullptr;
}
} // namespace

const char* readPlainFloat(std::string_view text, double& value)
{
    const DecimalText number = scanDecimal(text);
    if (!number.end)
        return nullptr;
    if (!isExact(number))
        return readByLibrary(number, text, value);
    value = exactDouble(number);
    return number.end;
}

const char* readPlainFloat(std::string_view text, float& value)
{
    const DecimalText number = scanDecimal(text);
    if (!number.end)
        return nullptr;
    const double wide = isExact(number) ? exactDouble(number) : 0;
    if (!isExact(number) || isHalfwayBetweenFloats(wide))
        return readByLibrary(number, text, value);
    value = static_cast<float>(wide);
    return number.end;
}
} // namespace vumo::Data::detail
