#pragma once

#include <cstddef>
#include <string>

namespace vumo::Data::detail
{
/// An unsigned number, its most significant byte first.
template <class Number>
std::string bigEndian(Number number)
{
    std::string bytes;
    for (std::size_t i = sizeof(Number); i > 0; --i)
        bytes += static_cast<char>(number >> (8 * (i - 1)) & 0xFF);
    return bytes;
}

/// The unsigned number whose most significant byte stands at `bytes`.
template <class Number>
Number readBigEndian(const char* bytes)
{
    Number number = 0;
    for (std::size_t i = 0; i < sizeof(Number); ++i)
        number = static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[i]));
    return number;
}
} // namespace vumo::Data::detail
