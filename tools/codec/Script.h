#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace vumo::codec
{
/// Takes commands from a script, which docs/formats/script.md describes: each a line of words, split as a POSIX shell
/// splits them, or a JSON array of texts.
class ScriptReader
{
public:
    /// Borrows the input.
    explicit ScriptReader(std::istream& in) : mIn(in) {}

    /// The words of the next command; false at the end. Passes over blank lines and comments. Throws a `CodecError`
    /// that tells the line.
    bool next(std::vector<std::string>& words);

    /// The line on which the last command began, counted from 1.
    unsigned long long line() const { return mLine; }

private:
    bool get(char& character);
    bool skipToCommand();
    void readJsonLine(std::vector<std::string>& words);
    void readWords(std::vector<std::string>& words);
    void skipComment();
    void readSingleQuoted(std::string& word);
    void readDoubleQuoted(std::string& word);
    void readDollarQuoted(std::string& word);
    char readEscape();
    char readNumber(unsigned int base, std::size_t mostDigits, std::string digits);

    std::istream& mIn;
    unsigned long long mLine = 1;
    unsigned long long mNextLine = 1;
};

/// The text as one word of such a line: as it is, in quotes, or as $'...' where it has control characters or is not
/// UTF-8.
std::string scriptWord(const std::string& text);
} // namespace vumo::codec
