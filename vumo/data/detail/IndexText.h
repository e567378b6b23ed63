#pragma once

#include <string_view>

namespace vumo::Data::detail
{
/// Reads `count` unsigned numbers separated by blanks, tabs or carriage returns, and nothing else, from an
/// index text. Throws `Index::eCreationErrors`; `numbers` is then unspecified.
void parseIndexNumbers(std::string_view text, unsigned int* numbers, unsigned int count);
} // namespace vumo::Data::detail
