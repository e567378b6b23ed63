#include "tools/codec/Script.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Json.h"

#include <algorithm>
#include <cstdio>
#include <istream>

namespace vumo::codec
{
namespace
{
/// What a shell would take for an operator, not for a part of a word.
constexpr const char* kOperators = "|&;<>()";

/// The letters of the escapes in $'...', each before the character that it stands for.
constexpr const char* kEscapes = "a\ab\be\x1B"
                                 "f\fn\nr\rt\tv\v\\\\''\"\"??";

bool isBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\r';
}

bool isControl(char character)
{
    return static_cast<unsigned char>(character) < ' ' || character == '\x7F';
}

bool needsNoQuotes(char character)
{
    const std::string marks = "_./=:,+@%-";
    const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
    return isLetter || (character >= '0' && character <= '9') || marks.find(character) != std::string::npos;
}

char checkedPlain(char character)
{
    if (std::string(kOperators).find(character) != std::string::npos)
        throw CodecError(std::string("the character ") + character + " needs quotes");
    return character;
}

std::string dollarQuoted(const std::string& text)
{
    std::string word = "$'";
    for (const char character : text)
    {
        char escape[8] = {character, 0};
        if (character == '\'' || character == '\\')
            std::snprintf(escape, sizeof(escape), "\\%c", character);
        else if (character == '\n' || character == '\t')
            std::snprintf(escape, sizeof(escape), "\\%c", character == '\n' ? 'n' : 't');
        else if (isControl(character) || static_cast<unsigned char>(character) > 127) // octal ones end by themselves
            std::snprintf(escape, sizeof(escape), "\\%03o",
                          static_cast<unsigned int>(static_cast<unsigned char>(character)));
        word += escape;
    }
    return word + "'";
}

std::string singleQuoted(const std::string& text)
{
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return word + "'";
}
} // namespace

bool ScriptReader::next(std::vector<std::string>& words)
{
    words.clear();
    while (words.empty())
    {
        if (!skipToCommand())
            return false;
        at([&] { return "line " + std::to_string(mLine); },
           [&] { mIn.peek() == '[' ? readJsonLine(words) : readWords(words); });
    }
    return true;
}

bool ScriptReader::get(char& character)
{
    if (!mIn.get(character))
        return false;
    mNextLine += character == '\n' ? 1 : 0;
    if (character == '\0')
        throw CodecError("a script has no zero byte");
    return true;
}

/// Passes over whitespace; false at the end.
bool ScriptReader::skipToCommand()
{
    char character = 0;
    while (mIn.peek() == '\n' || isBlank(static_cast<char>(mIn.peek())))
        get(character);
    mLine = mNextLine;
    return mIn.peek() != std::istream::traits_type::eof();
}

void ScriptReader::readJsonLine(std::vector<std::string>& words)
{
    std::string text;
    std::getline(mIn, text);
    ++mNextLine;
    const JsonValue value = parseJson(text);
    for (const JsonValue& word : value.items)
    {
        words.push_back(textFrom(word));
        if (words.back().find('\0') != std::string::npos)
            throw CodecError("a script has no zero byte");
    }
    if (words.empty())
        throw CodecError("an array of words is expected");
}

void ScriptReader::readWords(std::vector<std::string>& words)
{
    bool isInWord = false;
    const auto word = [&]() -> std::string& {
        if (!isInWord)
            words.emplace_back();
        isInWord = true;
        return words.back();
    };
    for (char character = 0; get(character) && character != '\n';)
    {
        if (isBlank(character))
            isInWord = false;
        else if (character == '#' && !isInWord)
            skipComment();
        else if (character == '\'')
            readSingleQuoted(word());
        else if (character == '"')
            readDoubleQuoted(word());
        else if (character == '$' && mIn.peek() == '\'')
            readDollarQuoted(word());
        else if (character != '\\')
            word() += checkedPlain(character);
        else if (!get(character))
            throw CodecError("a backslash has nothing to follow it");
        else if (character != '\n') // with a line's end it stands for nothing
            word() += character;
    }
}

void ScriptReader::skipComment()
{
    char character = 0;
    while (mIn.peek() != '\n' && get(character))
    {
    }
}

void ScriptReader::readSingleQuoted(std::string& word)
{
    for (char character = 0; get(character); word += character)
    {
        if (character == '\'')
            return;
    }
    throw CodecError("a single quote is not closed");
}

void ScriptReader::readDoubleQuoted(std::string& word)
{
    const std::string escapable = "$`\"\\\n";
    for (char character = 0; get(character);)
    {
        if (character == '"')
            return;
        const bool isEscape = character == '\\' && mIn.peek() != std::istream::traits_type::eof() &&
                              escapable.find(static_cast<char>(mIn.peek())) != std::string::npos;
        if (isEscape)
            get(character);
        if (!isEscape || character != '\n')
            word += character;
    }
    throw CodecError("a double quote is not closed");
}

void ScriptReader::readDollarQuoted(std::string& word)
{
    mIn.get(); // the quote
    for (char character = 0; get(character);)
    {
        if (character == '\'')
            return;
        word += character == '\\' ? readEscape() : character;
    }
    throw CodecError("a $' is not closed");
}

/// The character that is meant by what follows the backslash.
char ScriptReader::readEscape()
{
    char letter = 0;
    if (!get(letter))
        throw CodecError("a $' is not closed");
    if (letter == 'x')
        return readNumber(16, 2, "");
    if (letter >= '0' && letter <= '7')
        return readNumber(8, 3, std::string(1, letter));
    for (const char* escape = kEscapes; *escape != '\0'; escape += 2)
    {
        if (*escape == letter)
            return escape[1];
    }
    throw CodecError("\\" + std::string(1, letter) + " means nothing between $' and '");
}

char ScriptReader::readNumber(unsigned int base, std::size_t mostDigits, std::string digits)
{
    const std::string allowed = base == 8 ? "01234567" : "0123456789abcdefABCDEF";
    const auto isDigit = [&](int next) {
        return next != std::istream::traits_type::eof() && allowed.find(static_cast<char>(next)) != std::string::npos;
    };
    while (digits.size() < mostDigits && isDigit(mIn.peek()))
        digits += static_cast<char>(mIn.get());
    const unsigned long code = digits.empty() ? 0 : std::stoul(digits, nullptr, static_cast<int>(base));
    if (code == 0 || code > 255)
        throw CodecError("an escape in $' means a byte from 1 to 255");
    return static_cast<char>(code);
}

std::string scriptWord(const std::string& text)
{
    if (!text.empty() && std::all_of(text.begin(), text.end(), needsNoQuotes))
        return text;
    const bool isPlain = std::none_of(text.begin(), text.end(), isControl) && jsonText(text)[0] == '"';
    return isPlain ? singleQuoted(text) : dollarQuoted(text);
}
} // namespace vumo::codec
