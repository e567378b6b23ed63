#pragma once

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/MemoryInput.h"
#include "vumo/foundation/detail/Namespace.h"
#include "vumo/foundation/detail/PlainNumber.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <optional>
#include <string_view>

namespace vumo::detail
{
/// The position of the next character to be read, counted from 0, also when the last read failed or met
/// the end; -1 where the input cannot tell.
long long readPosition(std::istream& in);

/// What values are read from: any input, or a text in memory. The locale is the classic one in either case.
///
/// Of a text all that is plain is taken directly. Nothing of that fails or sets a state; as soon as something is
/// not plain, the rest is left to an input on the text, which then stands at the same place.
class ValueInput
{
public:
    using Traits = std::istream::traits_type;

    /// Reads the texts that are given to restart(). Throws what an extraction throws for a lack of memory.
    ValueInput() = default;

    /// Reads from the buffer of an input. Borrows both; the input is told by handOnState() what came of it.
    explicit ValueInput(std::istream& in);

    ValueInput(const ValueInput&) = delete;
    ValueInput& operator=(const ValueInput&) = delete;

    /// Starts with a text, borrowed. `position` is what that of its first character is called; -1 when it is not known.
    void restart(std::string_view text, long long position = 0)
    {
        mText = text;
        mPosition = position;
        mAt = mBegin = text.data();
        mEnd = mAt + text.size();
        mFailure = std::ios::goodbit;
        if (mStream)
            clearStream();
    }

    /// Gives the state of all that failed or met the end to `in`, as if that had been read.
    void handOnState(std::istream& in) const
    {
        in.setstate(mFailure | (mStream ? mStream->rdstate() : std::ios::goodbit));
    }

    /// The input, from which everything is taken from now on.
    std::istream& stream()
    {
        if (!mStream)
            openText();
        if (mAt)
        {
            mBuffer.restart(mText, static_cast<std::size_t>(mAt - mText.data()), mPosition);
            mTaken = mAt - mBegin;
        }
        mAt = mEnd = nullptr;
        return *mStream;
    }

    /// The next character, or the end, as which an input counts that has failed.
    Traits::int_type peek()
    {
        if (!mAt)
            return stream().good() ? mStream->peek() : Traits::eof();
        return mAt == mEnd ? Traits::eof() : Traits::to_int_type(*mAt);
    }

    /// Takes the next character.
    Traits::int_type get()
    {
        if (mAt)
            return mAt == mEnd ? Traits::eof() : Traits::to_int_type(*mAt++);
        const Traits::int_type next = stream().get();
        mTaken += mStream->gcount();
        return next;
    }

    /// Skips whitespace; returns whether text follows, as it never does in an input that has failed.
    bool skipToText();

    /// Says whether whitespace or the end follows.
    bool isAtSeparator()
    {
        const Traits::int_type next = peek();
        return Traits::eq_int_type(next, Traits::eof()) || isClassicSpace(Traits::to_char_type(next));
    }

    /// Marks the place as the begin of a value of which get() and takeUntil() take the characters.
    void beginValue()
    {
        mBegin = mAt;
        mTaken = 0;
    }

    /// Returns to the begin of that value; an input that cannot move stays where it is.
    void goBack();

    /// Goes on after an error: forgets the state that it left, and takes the rest of the word.
    void skipWord();

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
    void openText();
    void clearStream(); // not inline: g++ 12 would take the stream of a new object for one that is used unmade
    void open(std::streambuf* buffer);

    /// Where the next word begins, or the end; null for what is not a text.
    const char* nextWord() const
    {
        const char* at = mAt;
        while (at != mEnd && isClassicSpace(*at))
            ++at;
        return at;
    }

    MemoryBuffer mBuffer;
    std::optional<std::istream> mStream; // on an input's buffer, or on mBuffer, once something is not plain
    std::string_view mText;
    long long mPosition = 0;                        // of the text
    const char* mAt = nullptr;                      // in the text; null: the input is used
    const char* mEnd = nullptr;                     // of the text
    const char* mBegin = nullptr;                   // of the value in the text
    std::streamoff mTaken = 0;                      // of the value, once the input is used
    std::ios::iostate mFailure = std::ios::goodbit; // what skipWord() has forgotten
};
} // namespace vumo::detail
