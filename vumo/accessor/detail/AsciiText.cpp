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

/// Up to 64 bytes of a text at once, and which of them are special: a loop has to look at all but those that stand for
/// themselves in a value, escaped or not, wherever they are no part of a longer character. There are four escapes in
/// the 80 bytes of a usual record; to find them by words of eight bytes takes twice as long, byte by byte four times.
class Block
{
public:
    static constexpr std::size_t kSize = 64;

    /// Borrows the bytes from `begin` on, which is before the end of the text.
    Block(const char* begin, const char* textEnd)
        : mBegin(begin),
          mEnd(begin + std::min(kSize, static_cast<std::size_t>(textEnd - begin))),
          mTextEnd(textEnd),
          mSpecial(hasRoomAt(begin) ? bitsOf(begin) : bitsOfLast())
    {
    }

    const char* end() const { return mEnd; }

    /// How many bytes of the block there are from `next` on up to the next special one.
    std::size_t count(const char* next) const
    {
        const std::uint64_t special = mSpecial >> (next - mBegin);
        return special == 0 ? static_cast<std::size_t>(mEnd - next)
                            : static_cast<std::size_t>(__builtin_ctzll(special));
    }

    /// Copies them, and what comes after them, as that takes fewer steps: `out` has room for kSize bytes.
    std::size_t copy(const char* next, char* out) const
    {
        if (hasRoomAt(next))
            std::memcpy(out, next, kSize);
        else
            std::copy(next, mTextEnd, out);
        return count(next);
    }

private:
    bool hasRoomAt(const char* next) const { return mTextEnd - next >= std::ptrdiff_t{kSize}; }

    std::uint64_t bitsOfLast() const
    {
        char last[kSize] = {}; // a zero is special, so that the last count ends where the text does
        std::copy(mBegin, mTextEnd, last);
        return bitsOf(last);
    }

    /// A bit for each byte, the lowest for the first.
    static std::uint64_t bitsOf(const char* bytes)
    {
        char special[kSize];
        for (std::size_t i = 0; i < kSize; ++i)
            special[i] = isSpecial(bytes[i]);
        // The product moves the lowest bits of eight bytes into the highest byte, that of the first byte lowest.
        constexpr std::uint64_t kGather = 0x0102040810204080;
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < kSize; i += CHAR_BIT)
            bits |= loadCharacters(special + i) * kGather >> (kSize - CHAR_BIT) << i;
        return bits;
    }

    /// 1 for a control character, a quote, a backslash and a byte beyond ASCII, else 0. Without a branch, so that
    /// compilers take many bytes of a loop at once.
    static char isSpecial(char byte)
    {
        const bool isGraphic = static_cast<unsigned char>(byte - ' ') < kLastAsciiCode - ' ';
        return static_cast<char>(static_cast<int>(!isGraphic) | static_cast<int>(byte == '"') |
                                 static_cast<int>(byte == '\\'));
    }

    const char* mBegin;
    const char* mEnd;
    const char* mTextEnd;
    std::uint64_t mSpecial;
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
    /// the other; only plain ones may be left out.
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

char* putOctal(char* out, char character)
{
    const auto code = static_cast<unsigned char>(character);
    *out++ = '\\';
    for (int shift = 6; shift >= 0; shift -= 3)
        *out++ = static_cast<char>('0' + ((code >> shift) & 7));
    return out;
}
} // namespace

bool appendEscapedValue(const std::string& text, std::string& out)
{
    constexpr std::size_t kLongestEscape = 1 + kOctalDigits;
    constexpr std::size_t kRoom = Block::kSize * (kLongestEscape + 1) + MB_LEN_MAX; // a block puts no more
    char chunk[2048];
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
        const Block block(next, end);
        while (next < block.end())
        {
            const std::size_t count = block.copy(next, put);
            put += count;
            next += count;
            if (next == block.end())
                break;
            const char letter = kLetters[static_cast<unsigned char>(*next)];
            if (letter != 0)
            {
                *put++ = '\\';
                *put++ = letter;
                ++next;
                continue;
            }
            const std::size_t length = lengths.at(next, end);
            put = length == 1 && isControl(*next) ? putOctal(put, *next) : std::copy_n(next, length, put);
            next += length;
        }
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
    text.resize(value.size() + Block::kSize); // an escape is longer than its character
    char* out = text.data();
    const char* next = value.data();
    const char* const end = next + value.size();
    CharacterLengths lengths;
    bool isOutside = false;
    bool isOneStatement = true;
    while (next != end)
    {
        const Block block(next, end);
        while (next < block.end())
        {
            const std::size_t count = block.copy(next, out);
            if (isOutside && std::find(next, next + count, ';') != next + count)
                isOneStatement = false;
            out += count;
            next += count;
            if (next == block.end())
                break;
            if (*next == '\\')
            {
                *out++ = *next++; // to be replaced by what it escapes
                next += unescape(next, end, out[-1]);
                continue;
            }
            const std::size_t length = lengths.at(next, end);
            isOutside = isOutside != (*next == '"');
            out = std::copy_n(next, length, out);
            next += length;
        }
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return isOneStatement;
}

std::size_t escapedPosition(std::string_view value, std::size_t position)
{
    const char* next = value.data();
    const char* const end = next + value.size();
    CharacterLengths lengths;
    while (next != end)
    {
        const Block block(next, end);
        const std::size_t count = block.count(next);
        const char* const last = next + count;
        const std::size_t length = last == block.end() ? 0 : lengths.at(last, end);
        const bool isEscape = length == 1 && *last == '\\';
        const bool isInLineEnd = length == 1 && *last == '\r' && last + 1 != end && last[1] == '\n';
        const std::size_t same = count + (isInLineEnd ? 0 : length); // an escape gives one byte, too
        if (position < same)
            return static_cast<std::size_t>(next - value.data()) + position;
        position -= same;
        next = last + length;
        char unused = '\0';
        if (isEscape)
            next += unescape(next, end, unused);
    }
    return value.size();
}
} // namespace vumo::Data::detail
