#include "vumo/foundation/detail/DecimalDigits.h"

#include <array>
#include <cstring>

namespace vumo::detail
{
namespace
{
__extension__ using Wide = unsigned __int128;

// A double as IEEE 754 lays it out.
constexpr int kFractionBits = 52;
constexpr int kExponentBias = 1023;
constexpr std::uint64_t kHiddenBit = std::uint64_t(1) << kFractionBits;

template <int Count>
constexpr std::array<std::uint64_t, Count> powersOf(std::uint64_t base)
{
    std::array<std::uint64_t, Count> powers{};
    std::uint64_t power = 1;
    for (std::uint64_t& entry : powers)
    {
        entry = power;
        power *= base;
    }
    return powers;
}

constexpr auto kPowersOfFive = powersOf<28>(5); // 5^27 is the last that has 64 bits
constexpr auto kPowersOfTen = powersOf<20>(10);

/// A positive double: integer * 2^exponent, its first bit being bit kFractionBits.
struct BinaryNumber
{
    std::uint64_t integer;
    int exponent;
};

/// A number as the integer below it, and how what is left compares with a half.
struct Scaled
{
    std::uint64_t whole;
    bool isAboveHalf;
    bool isHalf;
    bool hasRest;
};

/// `number` * 10^`scale`, for a scale of 0 to 27.
Scaled scaleUp(const BinaryNumber& number, int scale)
{
    const Wide product = static_cast<Wide>(number.integer) * kPowersOfFive[static_cast<unsigned int>(scale)];
    const int shift = number.exponent + scale;
    if (shift >= 0)
        return {static_cast<std::uint64_t>(product << shift), false, false, false};
    const auto whole = static_cast<std::uint64_t>(product >> -shift);
    const Wide rest = product - (static_cast<Wide>(whole) << -shift);
    const Wide half = static_cast<Wide>(1) << (-shift - 1);
    return {whole, rest > half, rest == half, rest != 0};
}

/// `number` / 10^`scale`, for a number from 10 up to but not including 2^63.
Scaled scaleDown(const BinaryNumber& number, int scale)
{
    std::uint64_t integer = number.integer;
    bool hasFraction = false;
    if (number.exponent >= 0)
        integer <<= number.exponent;
    else
    {
        integer >>= -number.exponent;
        hasFraction = integer << -number.exponent != number.integer;
    }
    const std::uint64_t divisor = kPowersOfTen[static_cast<unsigned int>(scale)];
    const std::uint64_t whole = integer / divisor;
    const std::uint64_t twice = integer % divisor * 2;
    return {whole, twice > divisor || (twice == divisor && hasFraction), twice == divisor && !hasFraction,
            twice != 0 || hasFraction};
}

/// Divides by ten.
Scaled withoutLastDigit(const Scaled& number)
{
    const std::uint64_t digit = number.whole % 10;
    return {number.whole / 10, digit > 5 || (digit == 5 && number.hasRest), digit == 5 && !number.hasRest, true};
}

/// The exponent of ten of 2^`exponent`, rounded down; right for all exponents of a double.
int decimalExponent(int exponent)
{
    constexpr int kLog10Of2 = 78913; // times 2^18, as in Adams, "Ryu: fast float-to-string conversion" (2018)
    constexpr int kPlaces = 18;
    return exponent * kLog10Of2 >> kPlaces;
}
} // namespace

std::optional<DecimalDigits> roundToDigits(double value, int count)
{
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof(bits));
    const int magnitude = static_cast<int>(bits >> kFractionBits) - kExponentBias; // of the highest bit
    // Wrong for subnormal numbers, which have no hidden bit; but they are out of reach of the scaling below.
    const BinaryNumber number = {(bits & (kHiddenBit - 1)) | kHiddenBit, magnitude - kFractionBits};
    if (magnitude >= 63)
        return std::nullopt; // scaleDown() has 64 bits, and doubles what is left

    // The number is less than twice that power of two, so its exponent is this one or the next.
    int exponent = decimalExponent(magnitude);
    const int scale = count - 1 - exponent;
    if (scale >= static_cast<int>(kPowersOfFive.size()))
        return std::nullopt;
    Scaled scaled = scale >= 0 ? scaleUp(number, scale) : scaleDown(number, -scale);
    const std::uint64_t end = kPowersOfTen[static_cast<unsigned int>(count)];
    if (scaled.whole >= end)
    {
        scaled = withoutLastDigit(scaled);
        ++exponent;
    }
    std::uint64_t digits = scaled.whole;
    if (scaled.isAboveHalf || (scaled.isHalf && digits % 2 == 1))
        ++digits;
    if (digits == end)
    {
        digits /= 10;
        ++exponent;
    }
    return DecimalDigits{digits, exponent};
}
} // namespace vumo::detail
