#include "vumo/accessor/detail/AsciiText.h"

#include "vumo/accessor/detail/PlainBytes.h"
#include "vumo/foundation/detail/CharacterWord.h"
#include "vumo/foundation/detail/Characters.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdint>
#include <cstring>
#include <cwchar>

namespace vumo::Data::detail
{
namespace
{
struct Escape
{
    char character;
    char letter;
};

constexpr Escape kEscapes[] = {{'\a', 'a'}, {'\b', 'b'}, {'\t', 't'},  {'\n', 'n'}, {'\v', 'v'},
                               {'\f', 'f'}, {'\r', 'r'}, {'\\', '\\'}, {'"', '"'}};

constexpr std::size_t kOctalDigits = 3;

/// For each character its partner in an escape, and zero where there is none.
constexpr std::array<char, 256> partners(char Escape::*from, char Escape::*to)
{
    std::array<char, 256> result = {};
    for (const Escape& escape : kEscapes)
        result[static_cast<unsigned char>(escape.*from)] = escape.*to;
    return result;
}

constexpr std::array<char, 256> kLetters = partners(&Escape::character, &Escape::letter);
constexpr std::array<char, 256> kCharacters = partners(&Escape::letter, &Escape::character);

/// Up to eight bytes of a text at once: there are four escapes in the 80 bytes of a usual record, and to look at one
/// byte after the other takes half as long again.
struct ByteWord
{
    static constexpr std::size_t kSize = 8;

    /// Takes up to eight bytes of those that are left; zeros stand for those that are missing.
    ByteWord(const char* text, std::size_t left)
    {
        char last[kSize] = {};
        if (left < kSize)
            text = static_cast<char*>(std::memcpy(last, text, left));
        bytes = loadCharacters(text);
    }

    /// How many of them, up to the first that does not, stand for themselves in a value, escaped or not, wherever they
    /// are no part of a longer character: not a byte beyond ASCII, a control character, a quote or a backslash.
    std::size_t countThatStay() const
    {
        const auto isBelow = [this](std::uint64_t limit) { return (bytes - kOnes * limit) & ~bytes; };
        const auto is = [this](unsigned char character) {
            const std::uint64_t others = bytes ^ (kOnes * character);
            return (others - kOnes) & ~others;
        };
        // What is borrowed from a byte is wrong only for those after it, which no longer matter.
        const std::uint64_t found = (bytes | isBelow(' ') | is('"') | is('\\') | is(0x7F)) & (kOnes * 0x80);
        return found == 0 ? kSize : static_cast<std::size_t>(__builtin_ctzll(found)) / CHAR_BIT;
    }

    static constexpr std::uint64_t kOnes = 0x0101010101010101;

    std::uint64_t bytes;
};

bool isOctalDigit(char character)
{
    return character >= '0' && character <= '7';
}

/// Finds what the escape that goes on at `next`, after its backslash, stands for. Returns its length there in bytes; 0,
/// with `character` as it was, when there is no such escape.
std::size_t unescape(const char* next, const char* end, char& character)
{
    if (next == end)
        return 0;
    const char known = kCharacters[static_cast<unsigned char>(*next)];
    if (known != '\0')
    {
        character = known;
        return 1;
    }
    // More than \377 is no byte.
    const bool isOctal = static_cast<std::size_t>(end - next) >= kOctalDigits && *next <= '3' &&
                         std::all_of(next, next + kOctalDigits, isOctalDigit);
    if (!isOctal)
        return 0;
    character = static_cast<char>((next[0] - '0') << 6 | (next[1] - '0') << 3 | (next[2] - '0'));
    return kOctalDigits;
}

/// Finds out how long characters are in the current locale's encoding. A byte that is no part of one stands alone.
class CharacterLengths
{
public:
    /// The length in bytes of the character at `next`, which is before the end: at least 1. To be asked for one after
    /// the other; only those that copyWhatStays() copies may be left out.
    std::size_t at(const char* next, const char* end)
    {
        const std::size_t length =
            isPlainByte(*next) ? 1 : std::mbrtowc(nullptr, next, static_cast<std::size_t>(end - next), &mState);
        constexpr auto kIncomplete = static_cast<std::size_t>(-2); // -1, the one above it, means: no character
        if (length > 0 && length < kIncomplete)
            return length;
        mHasStrayBytes = true;
        mState = std::mbstate_t();
        return 1;
    }

    /// Says whether there was a byte beyond ASCII that is no part of a character.
    bool hasStrayBytes() const { return mHasStrayBytes; }

private:
    std::mbstate_t mState{};
    bool mHasStrayBytes = false;
};

/// Copies as many of the next eight characters as stay as they are, and returns how many. What comes after them at
/// `out` takes the room of eight. If they are less, and the end is not reached, then the next character is to be looked
/// at.
std::size_t copyWhatStays(const char* next, const char* end, char* out)
{
    const ByteWord word(next, static_cast<std::size_t>(end - next));
    storeCharacters(out, word.bytes);
    return word.countThatStay();
}

char* putEscaped(char* out, char character)
{
    const auto code = static_cast<unsigned char>(character);
    if (kLetters[code] == 0 && !isControl(character))
    {
        *out = character;
        return out + 1;
    }
    *out++ = '\\';
    if (kLetters[code] != 0)
        *out++ = kLetters[code];
    else
    {
        for (int shift = 6; shift >= 0; shift -= 3)
            *out++ = static_cast<char>('0' + ((code >> shift) & 7));
    }
    return out;
}

/// Undoes the escapes of a value of plain characters without quotes of its own; false for all others. `out` has room
/// for the value, and comes to stand after the text.
bool unescapePlain(std::string_view value, char*& out)
{
    if (!isPlain(value))
        return false;
    const char* next = value.data();
    const char* const end = next + value.size();
    while (next != end)
    {
        const auto left = static_cast<std::size_t>(end - next);
        const void* const backslash = std::memchr(next, '\\', left);
        const std::size_t count =
            backslash ? static_cast<std::size_t>(static_cast<const char*>(backslash) - next) : left;
        if (std::memchr(next, '"', count))
            return false;
        std::memcpy(out, next, count);
        next += count;
        out += count;
        if (backslash)
        {
            *out++ = *next++; // to be replaced by what it escapes
            next += unescape(next, end, out[-1]);
        }
    }
    return true;
}
} // namespace

bool appendEscapedValue(const std::string& text, std::string& out)
{
    constexpr std::size_t kRoom = ByteWord::kSize + MB_LEN_MAX; // a step of the loop puts no more
    char chunk[1024];
    char* put = chunk;
    const std::string::size_type begin = out.size();
    const char* next = text.data();
    const char* const end = next + text.size();
    CharacterLengths lengths;
    while (next != end)
    {
        if (static_cast<std::size_t>(chunk + sizeof(chunk) - put) < kRoom)
        {
            out.append(chunk, put);
            put = chunk;
        }
        const std::size_t count = copyWhatStays(next, end, put);
        put += count;
        next += count;
        if (count == ByteWord::kSize || next == end)
            continue;
        const std::size_t length = lengths.at(next, end);
        put = length == 1 ? putEscaped(put, *next) : std::copy_n(next, length, put);
        next += length;
    }
    out.append(chunk, put);
    if (!lengths.hasStrayBytes())
        return true;
    // Only a stray byte can join the backslash of an escape to a longer character, so only then it is worth a look.
    std::string readBack;
    unescapeValue(std::string_view(out).substr(begin), readBack);
    return readBack == text;
}

bool unescapeValue(std::string_view value, std::string& text)
{
    text.resize(value.size() + ByteWord::kSize); // an escape is longer than its character
    char* out = text.data();
    if (unescapePlain(value, out))
    {
        text.resize(static_cast<std::size_t>(out - text.data()));
        return true;
    }
    out = text.data();
    const char* next = value.data();
    const char* const end = next + value.size();
    CharacterLengths lengths;
    bool isOutside = false;
    bool isOneStatement = true;
    while (next != end)
    {
        const std::size_t count = copyWhatStays(next, end, out);
        if (isOutside && std::find(next, next + count, ';') != next + count)
            isOneStatement = false;
        out += count;
        next += count;
        if (count == ByteWord::kSize || next == end)
            continue;
        const std::size_t length = lengths.at(next, end);
        const char character = *next;
        isOutside = isOutside != (length == 1 && character == '"');
        out = length == 1 ? std::fill_n(out, 1, character) : std::copy_n(next, length, out);
        next += length;
        // The character takes the place of its backslash.
        if (length == 1 && character == '\\')
            next += unescape(next, end, out[-1]);
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return isOneStatement;
}

std::size_t escapedPosition(std::string_view value, std::size_t position)
{
    char unused[ByteWord::kSize];
    const char* next = value.data();
    const char* const end = next + value.size();
    CharacterLengths lengths;
    while (next != end)
    {
        const std::size_t count = copyWhatStays(next, end, unused);
        const char* const last = next + count;
        const std::size_t length = count == ByteWord::kSize || last == end ? 0 : lengths.at(last, end);
        const bool isEscape = length == 1 && *last == '\\';
        const bool isInLineEnd = length == 1 && *last == '\r' && last + 1 != end && last[1] == '\n';
        const std::size_t same = count + (isInLineEnd ? 0 : length); // an escape gives one byte, too
        if (position < same)
            return static_cast<std::size_t>(next - value.data()) + position;
        position -= same;
        next = last + length;
        if (isEscape)
            next += unescape(next, end, unused[0]);
    }
    return value.size();
}
} // namespace vumo::Data::detail
