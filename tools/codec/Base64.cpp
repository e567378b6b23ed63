#include "tools/codec/Base64.h"

#include "tools/codec/CodecError.h"

#include <cstdint>

namespace vumo::codec
{
namespace
{
constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr int kBitsOfLetter = 6;
constexpr int kBitsOfByte = 8;
} // namespace

std::string toBase64(const std::string& bytes)
{
    std::string text;
    std::uint32_t pending = 0;
    int bits = 0;
    for (const char byte : bytes)
    {
        pending = pending << kBitsOfByte | static_cast<unsigned char>(byte);
        for (bits += kBitsOfByte; bits >= kBitsOfLetter; bits -= kBitsOfLetter)
            text += kLetters[pending >> (bits - kBitsOfLetter) & 63U];
    }
    if (bits > 0)
        text += kLetters[pending << (kBitsOfLetter - bits) & 63U];
    text.resize((text.size() + 3) / 4 * 4, '=');
    return text;
}

std::string fromBase64(const std::string& text)
{
    const std::string letters = kLetters;
    std::string bytes;
    std::uint32_t pending = 0;
    int bits = 0;
    for (const char letter : text.substr(0, text.find('=')))
    {
        const std::string::size_type value = letters.find(letter);
        pending = pending << kBitsOfLetter | static_cast<std::uint32_t>(value);
        bits += kBitsOfLetter;
        if (bits < kBitsOfByte)
            continue;
        bits -= kBitsOfByte;
        bytes += static_cast<char>(pending >> bits & 255U);
    }
    // Catches letters that are none, padding that is wrong, and bits that no byte takes.
    if (toBase64(bytes) != text)
        throw CodecError("this is no base64");
    return bytes;
}
} // namespace vumo::codec
