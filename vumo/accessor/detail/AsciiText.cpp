#include "vumo/accessor/detail/AsciiText.h"

#include <algorithm>
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

constexpr std::string::size_type kOctalDigits = 3;

/// Walks a text by characters of the current locale's encoding. A byte that is no part of one stands alone.
class Characters
{
public:
    explicit Characters(const std::string& text) : mText(text) {}

    bool atEnd() const { return mPosition >= mText.size(); }
    std::string::size_type position() const { return mPosition; }

    /// The length in bytes of the character at the position, at least 1, which is stepped over.
    std::string::size_type step()
    {
        const char* const next = mText.data() + mPosition;
        std::size_t length = std::mbrtowc(nullptr, next, mText.size() - mPosition, &mState);
        constexpr std::size_t kIncomplete = static_cast<std::size_t>(-2);
        if (length == 0 || length >= kIncomplete)
        {
            length = 1;
            mState = std::mbstate_t();
        }
        mPosition += length;
        return length;
    }

    void skip(std::string::size_type bytes) { mPosition += bytes; }

private:
    const std::string& mText;
    std::string::size_type mPosition = 0;
    std::mbstate_t mState{};
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
    else if (code < 0x20 || code == 0x7F)
    {
        result += '\\';
        for (int shift = 6; shift >= 0; shift -= 3)
            result += static_cast<char>('0' + ((code >> shift) & 7));
    }
    else
        result += character;
}

/// Appends what the escape behind the backslash at `position` stands for, and returns the escape's length in
/// bytes behind the backslash; 0 when there is no such escape.
std::string::size_type appendUnescaped(std::string& result, const std::string& text, std::string::size_type position)
{
    const std::string::size_type next = position + 1;
    if (next >= text.size())
        return 0;
    const auto* const known = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                           [&](const Escape& escape) { return escape.letter == text[next]; });
    if (known != std::end(kEscapes))
    {
        result += known->character;
        return 1;
    }
    const std::string::size_type digitsEnd = text.find_first_not_of("01234567", next);
    const bool isByte = std::min(digitsEnd, text.size()) - next >= kOctalDigits && text[next] <= '3';
    if (!isByte)
        return 0;
    result += static_cast<char>(std::stoul(text.substr(next, kOctalDigits), nullptr, 8));
    return kOctalDigits;
}
} // namespace

std::string escapeValue(const std::string& text)
{
    std::string result;
    for (Characters characters(text); !characters.atEnd();)
    {
        const std::string::size_type position = characters.position();
        const std::string::size_type length = characters.step();
        if (length == 1)
            appendEscaped(result, text[position]);
        else
            result.append(text, position, length);
    }
    return result;
}

std::string unescapeValue(const std::string& text)
{
    std::string result;
    for (Characters characters(text); !characters.atEnd();)
    {
        const std::string::size_type position = characters.position();
        const std::string::size_type length = characters.step();
        std::string::size_type escape = 0;
        if (length == 1 && text[position] == '\\')
            escape = appendUnescaped(result, text, position);
        if (escape == 0)
            result.append(text, position, length);
        characters.skip(escape);
    }
    return result;
}
} // namespace vumo::Data::detail
