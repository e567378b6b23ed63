#pragma once

#include <string_view>

namespace vumo::Data::detail
{
/// Reads `count` unsigned numbers separated by blanks, tabs or carriage returns, and nothing else, from an
/// index text. Throws `Index::eCreationErrors`; `numbers` is then unspecified.
void parseIndexNumbers(std::string_view text, unsigned int* numbers, unsigned int count);

/// |a - b| + 1 in 32-bit arithmetic.
unsigned int placesBetween(unsigned int a, unsigned int b);
} // namespace vumo::Data::detail
