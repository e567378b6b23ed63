#pragma once

namespace vumo::Data::detail
{
/// The control characters that switch between sets of characters, in encodings that do that.
constexpr char kShiftCharacters[] = {'\x0E', '\x0F', '\x1B'};

constexpr unsigned char kLastAsciiCode = 0x7F;

/// Says whether the byte, unless it stands inside a longer character, is an ASCII character by itself in every
/// encoding that a locale can have.
constexpr bool isPlainByte(char byte)
{
    for (const char shift : kShiftCharacters)
    {
        if (byte == shift)
            return false;
    }
    return static_cast<unsigned char>(byte) <= kLastAsciiCode;
}
} // namespace vumo::Data::detail
