#include "vumo/foundation/detail/Quoted.h"

#include "vumo/foundation/detail/Characters.h"

namespace vumo::detail
{
namespace
{
constexpr std::string_view::size_type kLongestQuote = 80; // enough to tell a name by, in a message of one line

/// Says whether the byte goes on with a character that has begun, in UTF-8.
bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

void appendCharacter(std::string& result, char character)
{
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const auto code = static_cast<unsigned char>(character);
    if (character == '\n')
        result += "\\n";
    else if (isControl(character))
        result += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
    else
        result += character;
}
} // namespace

std::string quoted(std::string_view text)
{
    std::string_view::size_type shown = text.size();
    if (shown > kLongestQuote)
    {
        shown = kLongestQuote;
        while (shown > 0 && continuesCharacter(text[shown])) // no character is cut in two
            --shown;
    }
    std::string result = "'";
    for (const char character : text.substr(0, shown))
        appendCharacter(result, character);
    return result + (shown < text.size() ? "...'" : "'");
}
} // namespace vumo::detail
