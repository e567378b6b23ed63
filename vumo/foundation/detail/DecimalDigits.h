#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <cstdint>
#include <optional>

namespace vumo::detail
{
/// A number as its first significant digits: `digits` * 10^(`exponent` + 1 - their count).
struct DecimalDigits
{
    std::uint64_t digits;
    int exponent; // of the first digit
};

/// The greatest number of digits that roundToDigits() takes: enough for any double.
constexpr int kMaxDecimalDigits = 17;

/// Rounds a positive number to `count` significant digits, from 1 to kMaxDecimalDigits; a number halfway between
/// two goes to the even one.
///
/// The result is exact, because the arithmetic is: a double is an integer times a power of two, so scaling it by
/// 10^n takes a product by 5^n, which fits into 128 bits for n up to 27, and a shift; what the shift drops says how
/// to round. A number that is out of reach of that, below about 1e-11 for 17 digits and 1e-22 for 6 or from 2^63
/// on, has no result.
std::optional<DecimalDigits> roundToDigits(double value, int count);
} // namespace vumo::detail
