#pragma once

#include "vumo/foundation/detail/Namespace.h"
#include "vumo/foundation/detail/PlainNumber.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <streambuf>
#include <string_view>

namespace vumo::detail
{
/// Gives out a text in memory, moves in it, and tells positions.
class TextBuffer : public std::streambuf
{
public:
    /// Borrows the text; `place` is the first of its characters that is to be read.
    void restart(std::string_view text, const char* place)
    {
        char* const begin = const_cast<char*>(text.data()); // never written to: there is no put area, nor a putback
        setg(begin, begin + (place - begin), begin + text.size());
    }

protected:
    /// The position of the first character, or -1 when it is not known.
    virtual long long start() const { return 0; }

    pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode) override
    {
        const bool isInside = offset >= eback() - gptr() && offset <= egptr() - gptr();
        if (way != std::ios::cur || !isInside)
            return pos_type(off_type(-1));
        setg(eback(), gptr() + offset, egptr());
        const long long first = start();
        return pos_type(off_type(first < 0 ? first : first + (gptr() - eback())));
    }
};

/// What values are read from: any input, or a text in memory. The input is expected to use the classic locale.
///
/// Of a text all that is plain is taken directly. Nothing of that fails or sets a state; as soon as something is
/// not plain, the rest is left to an input on the text, which then stands at the same place.
class ValueInput
{
public:
    using Traits = std::istream::traits_type;

    /// Borrows the input.
    explicit ValueInput(std::istream& in) : mStream(in) {}

    /// Borrows both; `in` is an input on `buffer`, which need not have a text yet.
    ValueInput(std::istream& in, TextBuffer& buffer) : mStream(in), mBuffer(&buffer) {}

    /// Starts with a text, borrowed, for the buffer that was given.
    void restart(std::string_view text)
    {
        mText = text;
        mAt = mBegin = text.data();
        mEnd = mAt + text.size();
        mStream.clear();
        mFailure = std::ios::goodbit;
    }

    /// The input, from which everything is taken from now on.
    std::istream& stream()
    {
        if (mAt)
        {
            mBuffer->restart(mText, mAt);
            mTaken = mAt - mBegin;
        }
        mAt = mEnd = nullptr;
        return mStream;
    }

    /// The next character, or the end, as which an input counts that has failed.
    Traits::int_type peek() const
    {
        if (!mAt)
            return mStream.good() ? mStream.peek() : Traits::eof();
        return mAt == mEnd ? Traits::eof() : Traits::to_int_type(*mAt);
    }

    /// Takes the next character.
    Traits::int_type get()
    {
        if (!mAt)
        {
            const Traits::int_type next = mStream.get();
            mTaken += mStream.gcount();
            return next;
        }
        return mAt == mEnd ? Traits::eof() : Traits::to_int_type(*mAt++);
    }

    /// Skips whitespace; returns whether there is text behind it, as there never is in an input that has failed.
    bool skipToText();

    /// Marks the place as the begin of a value, to which goBack() returns.
    void beginValue()
    {
        mBegin = mAt;
        mTaken = 0;
    }

    /// Returns to the begin of the value; an input that cannot move stays where it is.
    void goBack();

    /// Goes on after an error: forgets the state that it left, and takes the rest of the word.
    void skipWord();

    /// Gives the input the state of all that failed, as if nothing had been forgotten.
    void recallState() { mStream.setstate(mFailure); }

    /// Says whether whitespace or the end follows.
    bool isAtSeparator() const
    {
        const Traits::int_type next = peek();
        return Traits::eq_int_type(next, Traits::eof()) || isClassicSpace(Traits::to_char_type(next));
    }

    /// Extracts one number as the input itself would; false, with nothing taken, when that is left to it.
    template <class T>
    bool takePlainNumber(T& value)
    {
        const char* const begin = nextWord();
        const char* const end =
            begin == mEnd ? nullptr : readPlainNumber({begin, static_cast<std::size_t>(mEnd - begin)}, value);
        if (end)
            mAt = end;
        return end;
    }

    /// Extracts the characters up to the next whitespace; none when that is left to the input.
    std::string_view takePlainWord()
    {
        const char* const begin = nextWord();
        if (begin == mEnd)
            return {};
        mAt = std::find_if(begin, mEnd, isClassicSpace);
        return {begin, static_cast<std::size_t>(mAt - begin)};
    }

    /// Takes the next word if it is that one; false, with nothing taken, for all others and where that is left to the
    /// input.
    bool takePlainWord(std::string_view word)
    {
        const char* const begin = nextWord();
        if (static_cast<std::size_t>(mEnd - begin) < word.size() || !std::equal(word.begin(), word.end(), begin))
            return false;
        const char* const end = begin + word.size();
        if (end != mEnd && !isClassicSpace(*end))
            return false;
        mAt = end;
        return true;
    }

    /// Takes the characters at hand up to the first that fulfils the condition.
    template <class Condition>
    std::string_view takeUntil(Condition condition)
    {
        const char* const begin = mAt;
        mAt = std::find_if(mAt, mEnd, condition);
        return {begin, static_cast<std::size_t>(mAt - begin)};
    }

private:
    /// Where the next word begins, or the end; null for what is not a text.
    const char* nextWord() const
    {
        const char* at = mAt;
        while (at != mEnd && isClassicSpace(*at))
            ++at;
        return at;
    }

    std::istream& mStream;
    TextBuffer* mBuffer = nullptr;
    std::string_view mText;
    const char* mAt = nullptr; // in the text; null: the input is used
    const char* mEnd = nullptr;
    const char* mBegin = nullptr;                   // of the value in the text, as long as that is in use
    std::streamoff mTaken = 0;                      // of the value, through get(), once the input is used
    std::ios::iostate mFailure = std::ios::goodbit; // what skipWord() has forgotten
};
} // namespace vumo::detail
