#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// Finds the lines of a file from its last to its first, reading it backwards in blocks.
///
/// Holds what was read until it is told to forget it, so that the text of a statement need not be read again. That
/// has a limit: of what is longer it tells where it lies and what it begins and ends with. Borrows the stream.
class BackwardLines
{
public:
    static constexpr std::size_t kHeadSize = 256; // commands are far shorter

    struct Line
    {
        std::streamoff begin = 0; ///< of its first character
        std::streamoff end = 0;   ///< after its last character: at its newline, or at a carriage return before it
        std::streamoff next = 0;  ///< of the line that follows
        std::string_view head;    ///< its first characters, up to kHeadSize of them; valid until the next call
        char last = '\0';         ///< its last character; zero when it has none
    };

    /// `size` is that of the file in bytes. Holds not much more than `longestHeld` of them.
    BackwardLines(std::istream& in, std::streamoff size, std::size_t longestHeld);

    /// Steps to the line before; false when the first line was given out, or on failure.
    bool previous(Line& line);

    /// Gives what stands between two places in the lines that were given out, until the next call of any function.
    /// False on failure.
    bool readText(std::streamoff begin, std::streamoff end, std::string_view& text);

    /// What stands from there on will not be asked for.
    void forgetFrom(std::streamoff offset);

    /// Empty, or why the file could not be read.
    const std::string& error() const { return mError; }

private:
    bool holdsAll(std::streamoff begin, std::streamoff end) const;
    std::string_view held(std::streamoff begin, std::streamoff end) const;
    char lastOf(std::streamoff end) const;

    bool load();
    void makeRoom(std::size_t size);
    bool read(std::streamoff position, char* bytes, std::size_t size);
    bool fail(const char* error);

    std::istream& mIn;
    std::streamoff mSize;
    std::size_t mLongestHeld;
    std::streamoff mEnd;            // of the line to be found next: at its newline; below 0: none is left
    std::streamoff mBegin;          // of the bytes that are held, which stand after the room in mBytes
    std::unique_ptr<char[]> mBytes; // not filled: room that is not used yet costs nothing
    std::size_t mRoom = 0;
    std::size_t mHeld = 0;
    std::string mLongText;                 // that is not held
    std::vector<std::streamoff> mNewlines; // in what is held, before mEnd
    std::string mError;
};
} // namespace vumo::Data::detail
