#include "vumo/foundation/detail/PlainNumber.h"

#include "vumo/foundation/detail/CharacterWord.h"

#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace vumo::detail
{
namespace
{
constexpr std::uint64_t kGreatestExactInteger = std::uint64_t(1) << DBL_MANT_DIG; // all up to it are doubles
constexpr std::ptrdiff_t kMostDigits = 19;     // 10^19 is less than 2^64, so their integer does not overflow
constexpr std::ptrdiff_t kLongestExponent = 4; // e+308 has three digits; what has more than four is left to others
constexpr double kSigns[] = {1.0, -1.0};

// The powers of ten that are doubles: 10^n is 5^n * 2^n, and 5^22 is the last that fits into 53 bits.
constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr auto kGreatestExactPower = static_cast<std::ptrdiff_t>(std::size(kPowersOfTen)) - 1;

constexpr std::uint64_t kIntegerPowersOfTen[] = {1,       10,        100,        1'000,      10'000,
                                                 100'000, 1'000'000, 10'000'000, 100'000'000};

/// The parts of a number's text: +-`integer` * 10^`exponent`.
struct DecimalText
{
    std::uint64_t integer = 0; // of no use when there are more than kMostDigits
    std::ptrdiff_t exponent = 0;
    std::ptrdiff_t digits = 0;
    bool isNegative = false;
};

/// Up to eight characters, as one number whose lowest byte is the first of them. Digits are taken all at once, as how
/// many there are cannot be predicted: one by one they cost 7 % of reading a text, 193 ns to 207 ns an element, and
/// from_chars alone costs 15 %.
struct Octet
{
    static constexpr std::ptrdiff_t kSize = 8;

    explicit Octet(const char* text) : bytes(loadCharacters(text)) {}

    /// How many of them are digits, up to the first that is none.
    std::ptrdiff_t digitCount() const
    {
        // A digit is 0 to 9 now. 0x76 is 0x80 - 10: added to 10 and more it gives the high bit, unless that was there
        // before. What is carried from a byte reaches only those after it, which no longer matter.
        const std::uint64_t values = bytes ^ kZeros;
        const std::uint64_t others = ((values + kOnes * 0x76) | values) & kHighBits;
        // The lowest bit of `others` is that of the first that is no digit; less one it is all ones before that.
        const std::uint64_t below = ((others & (~others + 1)) >> 7) - 1;
        return others == 0 ? kSize : static_cast<std::ptrdiff_t>(((below & kOnes) * kOnes) >> 56); // sum of all bytes
    }

    /// The number that the first `count` of them make, all of which are digits; there is one at least.
    std::uint64_t number(std::ptrdiff_t count) const
    {
        std::uint64_t values = (bytes ^ kZeros) << (8 * (kSize - count)); // zeros in front
        values = values * 10 + (values >> 8);                             // pairs of digits in bytes 0, 2, 4 and 6
        // The number is p0 * 10^6 + p2 * 10^4 + p4 * 10^2 + p6; two of its terms at a time meet in the upper half.
        const std::uint64_t outer = (values & kPairs) * (100 + (std::uint64_t(1'000'000) << 32));
        const std::uint64_t inner = ((values >> 16) & kPairs) * (1 + (std::uint64_t(10'000) << 32));
        return (outer + inner) >> 32;
    }

    static constexpr std::uint64_t kOnes = 0x0101010101010101;
    static constexpr std::uint64_t kZeros = kOnes * '0';
    static constexpr std::uint64_t kHighBits = kOnes * 0x80;
    static constexpr std::uint64_t kPairs = 0x000000FF000000FF; // bytes 0 and 4

    std::uint64_t bytes;
};

/// Appends the digits to the integer.
inline const char* scanDigits(const char* at, const char* end, std::uint64_t& integer)
{
    if (end - at >= Octet::kSize)
    {
        const Octet octet(at);
        const std::ptrdiff_t count = octet.digitCount();
        if (count == 0)
            return at;
        integer = integer * kIntegerPowersOfTen[count] + octet.number(count);
        at += count;
        if (count < Octet::kSize)
            return at;
    }
    for (; at != end; ++at)
    {
        const auto digit = static_cast<unsigned char>(*at - '0');
        if (digit > 9)
            break;
        integer = integer * 10 + digit;
    }
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

/// Returns the end of the number; null when it is not plain.
inline const char* scanDecimal(std::string_view text, DecimalText& number)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    number.isNegative = at != end && *at == '-';
    at += number.isNegative ? 1 : 0;
    const char* begin = at;
    at = scanDigits(at, end, number.integer);
    number.digits = at - begin;
    if (at == begin)
        return nullptr;
    if (at != end && *at == '.')
    {
        begin = ++at;
        at = scanDigits(at, end, number.integer);
        if (at == begin)
            return nullptr;
        number.exponent = begin - at;
        number.digits += at - begin;
    }
    return at != end && (*at == 'e' || *at == 'E') ? scanExponent(at + 1, end, number.exponent) : at;
}

/// Says whether one floating-point operation makes the double out of the parts. Where the compiler computes with more
/// bits than a double has, it would be rounded twice.
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
    return magnitude * kSigns[number.isNegative]; // a branch on the sign of random numbers would be mispredicted
}

/// Says whether the double lies halfway between two floats. The double is the text rounded, so then the text may lie on
/// either side of it, and which float is nearer cannot be told. Any other double rounds to the same float as its text.
/// For doubles in the range of normal floats, or 0.
bool isHalfwayBetweenFloats(double value)
{
    constexpr std::uint64_t kHalf = std::uint64_t(1) << (DBL_MANT_DIG - FLT_MANT_DIG - 1);
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return (bits & (kHalf * 2 - 1)) == kHalf;
}

/// Makes the number of its parts, where that is exact.
bool convert(const DecimalText& number, double& value)
{
    if (!isExact(number))
        return false;
    value = exactDouble(number);
    return true;
}

bool convert(const DecimalText& number, float& value)
{
    double wide = 0;
    if (!convert(number, wide) || isHalfwayBetweenFloats(wide))
        return false;
    value = static_cast<float>(wide);
    return true;
}

template <class T>
const char* readFloat(std::string_view text, T& value)
{
    DecimalText number;
    const char* const end = scanDecimal(text, number);
    if (!end || convert(number, value))
        return end;
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? end : nullptr;
}
} // namespace

const char* readPlainFloat(std::string_view text, double& value)
{
    return readFloat(text, value);
}

const char* readPlainFloat(std::string_view text, float& value)
{
    return readFloat(text, value);
}
} // namespace vumo::detail
