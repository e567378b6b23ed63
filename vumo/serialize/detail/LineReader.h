#pragma once

#include "vumo/serialize/detail/LineWindow.h"

#include <istream>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// The characters of a line, without its newline, that the raw formats read.
constexpr unsigned int kMaxLineLength = 1023;

/// Says whether a trimmed line is the keyword, alone or followed by a blank and a text, and gives that text.
bool isKeywordLine(std::string_view line, const char* keyword, std::string& text);

/// Reads an input line by line, taking nothing after the line that was asked for.
///
/// Lines are trimmed and counted. Of a line that is too long the rest is read past, so that the next one is
/// a line again; what is left of its text serves to guess what it was meant to be, never as a value.
class LineReader
{
public:
    /// Who reads the input while the reader lives. A channel's reader shares it with the readers of the streams, which
    /// must find it after the last line. One that is alone may take lines from it late, at the latest when it is
    /// destroyed, which is much faster.
    enum eUse
    {
        kShared,
        kAlone
    };

    /// Borrows the input.
    explicit LineReader(std::istream& in, eUse use = kShared) : mIn(in), mWindow(in), mUse(use) {}
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// False at the end of the input.
    bool next();

    /// Passes over blank lines; a line that is too long is never blank.
    bool nextFilled();

    /// The current line, trimmed at both ends; valid until the next one is read.
    std::string_view text() const { return mText; }
    bool isTooLong() const { return mTooLong; }

    /// Says whether lines ended early because the input broke, as a file does whose disk fails.
    bool isBroken() const { return mIn.bad(); }

    /// The number of lines read, blank ones included.
    unsigned int record() const { return mRecord; }

    /// Where text() begins in the input, counted in characters from 0; -1 where the input cannot tell.
    long long position() const { return mStart < 0 ? mStart : mStart + mOffset + (mText.data() - mLine.data()); }

    std::string tooLongMessage() const;

private:
    bool takeLine();
    bool copyLine();

    std::istream& mIn;
    LineWindow mWindow;
    eUse mUse;
    char mCopy[kMaxLineLength + 1];
    std::string_view mLine;        // without its newline
    std::string_view mText;        // of the line
    long long mStart = -1;         // where the input stood when it was asked; -1: it cannot tell
    std::streamoff mOffset = 0;    // of the line, from there
    std::streamsize mConsumed = 0; // of the input for the line, with its newline
    unsigned int mRecord = 0;
    bool mTooLong = false;
};
} // namespace vumo::Data::detail
