#pragma once

#include <istream>
#include <string>

namespace vumo::Data::detail
{
/// Finds the lines of a file from its last to its first, reading it backwards in blocks.
///
/// Holds two blocks, however long the lines are: it tells where a line lies and what it begins and ends with,
/// not what it says. Borrows the stream.
class BackwardLines
{
public:
    static constexpr std::streamoff kBlockSize = 1024;
    static constexpr std::size_t kHeadSize = 256;

    struct Line
    {
        std::streamoff begin = 0; ///< of its first character
        std::streamoff end = 0;   ///< behind its last character: at its newline, or at a carriage return before it
        std::streamoff next = 0;  ///< of the line that follows
        std::string head;         ///< its first characters, up to kHeadSize of them
        char last = '\0';         ///< its last character; zero when it has none
    };

    /// `size` is that of the file in bytes.
    BackwardLines(std::istream& in, std::streamoff size);

    /// Steps to the line before; false when the first line was given out, or on failure.
    bool previous(Line& line);

    /// Empty, or why the file could not be read.
    const std::string& error() const { return mError; }

private:
    struct Block
    {
        std::streamoff begin = 0;
        std::string bytes;
        bool holds(std::streamoff offset) const;
    };

    char at(std::streamoff offset);
    void load(std::streamoff offset);

    std::istream& mIn;
    std::streamoff mSize;
    std::streamoff mEnd; // of the line to be found next: at its newline; below 0: none is left
    Block mCurrent;      // the block read last
    Block mLater;        // the one behind it in the file
    std::string mError;
};
} // namespace vumo::Data::detail
