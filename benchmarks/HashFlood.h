#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace bench
{
/// Different texts that all have one value of `std::hash`: in a hashed container each look-up meets all of them. They
/// have no character that separates anything in the raw formats. Always the same ones.
std::vector<std::string> textsOfOneHash(std::size_t count);
} // namespace bench
