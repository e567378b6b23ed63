#pragma once

#include <array>
#include <ostream>
#include <streambuf>
#include <string>

/// Standard output, through a buffer of its own that knows why a write failed.
class StandardOutput : public std::streambuf
{
public:
    StandardOutput() { setp(mBuffer.data(), mBuffer.data() + mBuffer.size()); }

    static bool isTerminal();

    /// Whether standard error leads to the same place, where data and words have to keep their order.
    static bool isSharedWithErrors();

    /// `errno` of the write that failed, 0 when none did.
    int error() const { return mError; }

protected:
    int_type overflow(int_type byte) override;
    int sync() override;

private:
    std::array<char, 1U << 16U> mBuffer;
    int mError = 0;
};

/// Passes text on to another stream, each line of it after the same words.
class LeadingWords : public std::streambuf
{
public:
    /// Borrows the stream. Lines end with that byte.
    LeadingWords(std::ostream& out, std::string words, char lineEnd)
        : mOut(out),
          mWords(std::move(words)),
          mLineEnd(lineEnd)
    {
    }

protected:
    int_type overflow(int_type byte) override;
    std::streamsize xsputn(const char* text, std::streamsize length) override;

private:
    std::ostream& mOut;
    std::string mWords;
    char mLineEnd;
    bool mIsLineStart = true;
};
