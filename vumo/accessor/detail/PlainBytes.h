#pragma once

#include <string_view>

namespace vumo::Data::detail
{
/// The control characters that switch between sets of characters, in encodings that do that.
constexpr char kShiftCharacters[] = {'\x0E', '\x0F', '\x1B'};

constexpr unsigned char kLastAsciiCode = 0x7F;

/// Not 0 for a byte that is not plain. Without a branch, so that compilers take many bytes of a loop at once.
constexpr unsigned char bitsBeyondPlain(char byte)
{
    int bits = static_cast<unsigned char>(byte) & ~kLastAsciiCode;
    for (const char shift : kShiftCharacters)
        bits |= static_cast<int>(byte == shift);
    return static_cast<unsigned char>(bits);
}

/// Says whether the byte, unless it stands inside a longer character, is an ASCII character by itself in every
/// encoding that a locale can have.
constexpr bool isPlainByte(char byte)
{
    return bitsBeyondPlain(byte) == 0;
}

/// Says whether isPlainByte() holds for all of the text, at the speed of memory.
inline bool isPlain(std::string_view text)
{
    unsigned char bits = 0;
    for (const char byte : text)
        bits |= bitsBeyondPlain(byte);
    return bits == 0;
}
} // namespace vumo::Data::detail
