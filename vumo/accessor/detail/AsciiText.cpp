#include "vumo/accessor/detail/AsciiText.h"

#include "vumo/accessor/detail/PlainBytes.h"
#include "vumo/foundation/detail/Characters.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <iterator>

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

/// Says for each byte whether it stands for itself in a value, escaped or not, unless inside a longer character.
constexpr std::array<bool, 256> bytesThatStay()
{
    std::array<bool, 256> result = {};
    for (std::size_t code = 0; code < result.size(); ++code)
    {
        const char byte = static_cast<char>(code);
        result[code] = isPlainByte(byte) && !isControl(byte) && byte != '\\' && byte != '"';
    }
    return result;
}

constexpr std::array<bool, 256> kBytesThatStay = bytesThatStay();

/// Walks a text by characters of the current locale's encoding. A byte that is no part of one stands alone.
class Characters
{
public:
    /// Borrows the text, which may change in front of the position.
    Characters(const char* begin, const char* end) : mNext(begin), mEnd(end) {}

    bool atEnd() const { return mNext == mEnd; }
    const char* position() const { return mNext; }
    std::size_t left() const { return static_cast<std::size_t>(mEnd - mNext); }

    /// Steps over all characters that stay as they are, up to the next one to be looked at.
    void stepOverWhatStays()
    {
        while (mNext != mEnd && kBytesThatStay[static_cast<unsigned char>(*mNext)])
            ++mNext;
    }

    /// Says whether there was a byte beyond ASCII that is no part of a character.
    bool hasStrayBytes() const { return mHasStrayBytes; }

    /// The length in bytes of the character at the position, at least 1, which is stepped over.
    std::size_t step()
    {
        std::size_t length = isPlainByte(*mNext) ? 1 : std::mbrtowc(nullptr, mNext, left(), &mState);
        constexpr auto kIncomplete = static_cast<std::size_t>(-2); // -1, the one above it, means: no character
        if (length == 0 || length >= kIncomplete)
        {
            length = 1;
            mHasStrayBytes = true;
            mState = std::mbstate_t();
        }
        mNext += length;
        return length;
    }

    void skip(std::size_t bytes) { mNext += bytes; }

private:
    const char* mNext;
    const char* mEnd;
    std::mbstate_t mState{};
    bool mHasStrayBytes = false;
};

void appendEscaped(std::string& result, char character)
{
    const auto* const known = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                           [&](const Escape& escape) { return escape.character == character; });
    const auto code = static_cast<unsigned char>(character);
    if (known != std::end(kEscapes))
    {
        result += '\\';
        result += known->letter;
    }
    else if (isControl(character))
    {
        result += '\\';
        for (int shift = 6; shift >= 0; shift -= 3)
            result += static_cast<char>('0' + ((code >> shift) & 7));
    }
    else
        result += character;
}

bool isOctalDigit(char character)
{
    return character >= '0' && character <= '7';
}

/// Finds what the escape that goes on at `next`, after its backslash, stands for. Returns its length there in bytes;
/// 0 when there is no such escape.
std::size_t unescape(const char* next, std::size_t left, char& character)
{
    if (left == 0)
        return 0;
    const auto* const known = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                           [&](const Escape& escape) { return escape.letter == *next; });
    if (known != std::end(kEscapes))
    {
        character = known->character;
        return 1;
    }
    // More than \377 is no byte.
    if (left < kOctalDigits || *next > '3' || !std::all_of(next, next + kOctalDigits, isOctalDigit))
        return 0;
    character = static_cast<char>((next[0] - '0') << 6 | (next[1] - '0') << 3 | (next[2] - '0'));
    return kOctalDigits;
}
} // namespace

bool appendEscapedValue(const std::string& text, std::string& out)
{
    const std::string::size_type begin = out.size();
    Characters characters(text.data(), text.data() + text.size());
    while (!characters.atEnd())
    {
        const char* const kept = characters.position();
        characters.stepOverWhatStays();
        const char* const next = characters.position();
        out.append(kept, next);
        const std::size_t length = characters.atEnd() ? 0 : characters.step();
        if (length == 1)
            appendEscaped(out, *next);
        else
            out.append(next, length);
    }
    if (!characters.hasStrayBytes())
        return true;
    // Only a stray byte can join the backslash of an escape to a longer character, so only then it is worth a look.
    std::string readBack = out.substr(begin);
    unescapeValue(readBack, 0, readBack.size());
    return readBack == text;
}

bool unescapeValue(std::string& text, std::string::size_type begin, std::string::size_type end)
{
    char* out = text.data(); // never past what is read: an escape is longer than its character
    bool isOutside = false;
    bool isOneStatement = true;
    for (Characters characters(out + begin, out + end); !characters.atEnd();)
    {
        const char* const kept = characters.position();
        characters.stepOverWhatStays();
        const char* const next = characters.position();
        const std::size_t length = characters.atEnd() ? 0 : characters.step();
        char character = '\0';
        if (isOutside && std::find(kept, next, ';') != next)
            isOneStatement = false;
        isOutside = isOutside != (length == 1 && *next == '"');
        const bool isEscape = length == 1 && *next == '\\';
        const std::size_t escape = isEscape ? unescape(characters.position(), characters.left(), character) : 0;
        const std::size_t copied = static_cast<std::size_t>(next - kept) + (escape == 0 ? length : 0);
        std::memmove(out, kept, copied);
        out += copied;
        if (escape > 0)
            *out++ = character;
        characters.skip(escape);
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return isOneStatement;
}

std::size_t escapedPosition(std::string_view value, std::size_t position)
{
    const char* const begin = value.data();
    Characters characters(begin, begin + value.size());
    while (!characters.atEnd())
    {
        const char* const kept = characters.position();
        characters.stepOverWhatStays();
        const char* const next = characters.position();
        const std::size_t length = characters.atEnd() ? 0 : characters.step();
        char ignored = '\0';
        const bool isEscape = length == 1 && *next == '\\';
        const std::size_t escape = isEscape ? unescape(characters.position(), characters.left(), ignored) : 0;
        const bool isInLineEnd = length == 1 && *next == '\r' && !characters.atEnd() && *characters.position() == '\n';
        // An escape gives one byte, too.
        const std::size_t same = static_cast<std::size_t>(next - kept) + (isInLineEnd ? 0 : length);
        if (position < same)
            return static_cast<std::size_t>(kept - begin) + position;
        position -= same;
        characters.skip(escape);
    }
    return value.size();
}
} // namespace vumo::Data::detail
