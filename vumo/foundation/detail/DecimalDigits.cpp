#include "vumo/foundation/detail/DecimalDigits.h"

#include <array>
#include <cstring>
#include <limits>

namespace vumo::detail
{
namespace
{
__extension__ using Wide = unsigned __int128;

// A double as IEEE 754 lays it out.
constexpr int kFractionBits = 52;
constexpr int kExponentBits = 11;
constexpr int kExponentBias = 1023;
constexpr std::uint64_t kHighestBit = std::uint64_t(1) << 63;

/// A power of five as integer / 2^shift, with the highest bit set.
struct FivePower
{
    std::uint64_t integer;
    int shift;
};

constexpr int kGreatestScale = 27; // 5^27 is the last that has 64 bits

constexpr std::array<FivePower, kGreatestScale + 1> powersOfFive()
{
    std::array<FivePower, kGreatestScale + 1> powers{};
    std::uint64_t power = 1;
    for (FivePower& entry : powers)
    {
        entry = {power, 0};
        for (; entry.integer < kHighestBit; ++entry.shift)
            entry.integer *= 2;
        power *= 5;
    }
    return powers;
}

constexpr auto powersOfTen()
{
    std::array<std::uint64_t, std::numeric_limits<std::uint64_t>::digits10 + 1> powers{}; // all that 64 bits hold
    std::uint64_t power = 1;
    for (std::uint64_t& entry : powers)
    {
        entry = power;
        power *= 10;
    }
    return powers;
}

constexpr auto kPowersOfFive = powersOfFive();
constexpr auto kPowersOfTen = powersOfTen();

/// A positive double: integer * 2^(magnitude - 63). The highest bit of the integer is set.
struct BinaryNumber
{
    std::uint64_t integer;
    int magnitude;
};

/// A number as the integer below it, and what is left: compared with kHighestBit it is what that is compared with a
/// half. The lowest bit of `rest` means no more than that there is something; so it may be set where the number is odd.
struct Scaled
{
    std::uint64_t whole;
    std::uint64_t rest;
};

/// `number` * 10^`scale`, for a scale of 0 to kGreatestScale, where that is from 1 up to but not including 2^63.
inline Scaled scaleUp(const BinaryNumber& number, int scale)
{
    const FivePower& power = kPowersOfFive[static_cast<unsigned int>(scale)];
    const Wide product = static_cast<Wide>(number.integer) * power.integer;
    const auto high = static_cast<std::uint64_t>(product >> 64);
    const int fraction = power.shift - 1 - number.magnitude - scale; // bits of `high`: from 1 to 63
    const std::uint64_t hasMore = static_cast<std::uint64_t>(product) != 0;
    return {high >> fraction, high << (64 - fraction) | hasMore};
}

/// `number` / 10^`scale`, for a number from 10 up to but not including 2^63.
Scaled scaleDown(const BinaryNumber& number, int scale)
{
    const std::uint64_t integer = number.integer >> (63 - number.magnitude);
    const bool hasFraction = integer << (63 - number.magnitude) != number.integer;
    const std::uint64_t divisor = kPowersOfTen[static_cast<unsigned int>(scale)];
    const std::uint64_t twice = integer % divisor * 2;
    const bool isBelowHalf = twice < divisor;
    const bool isHalf = twice == divisor && !hasFraction;
    return {integer / divisor, isBelowHalf ? 0 : isHalf ? kHighestBit : kHighestBit | 1};
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
    // Wrong for subnormal numbers, which have no hidden bit; but they are out of reach of the scaling below.
    const BinaryNumber number = {bits << kExponentBits | kHighestBit,
                                 static_cast<int>(bits >> kFractionBits) - kExponentBias};
    if (number.magnitude >= 63)
        return std::nullopt; // scaleDown() has 64 bits, and doubles what is left

    // The number is less than twice its highest bit, so its exponent is that one's or the next.
    int exponent = decimalExponent(number.magnitude);
    int scale = count - 1 - exponent;
    if (scale > kGreatestScale)
        return std::nullopt;
    const auto scaledBy = [&](int power) { return power >= 0 ? scaleUp(number, power) : scaleDown(number, -power); };
    const std::uint64_t end = kPowersOfTen[static_cast<unsigned int>(count)];
    Scaled scaled = scaledBy(scale);
    if (scaled.whole >= end)
    {
        scaled = scaledBy(scale - 1);
        ++exponent;
    }
    std::uint64_t digits = scaled.whole;
    digits += (scaled.rest | (digits & 1)) > kHighestBit ? 1 : 0; // half of one goes to the even number
    if (digits == end)
    {
        digits /= 10;
        ++exponent;
    }
    return DecimalDigits{digits, exponent};
}
} // namespace vumo::detail
