#pragma once

#include "vumo/data/detail/PlainNumber.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <streambuf>
#include <string_view>

namespace vumo::Data::detail
{
/// Gives out a text in memory, and shows what of it is still to come. Tells positions; moves to none.
class TextBuffer : public std::streambuf
{
public:
    /// Borrows the text.
    void restart(std::string_view text)
    {
        char* const begin = const_cast<char*>(text.data()); // never written to: there is no put area, nor a putback
        setg(begin, begin, begin + text.size());
    }

    std::string_view rest() const { return {gptr(), static_cast<std::size_t>(egptr() - gptr())}; }
    void skipTo(const char* place) { setg(eback(), const_cast<char*>(place), egptr()); }

protected:
    /// The position of the first character, or -1 when it is not known.
    virtual long long start() const { return 0; }

    pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode) override
    {
        const long long first = start();
        if (offset != 0 || way != std::ios::cur || first < 0)
            return pos_type(off_type(-1));
        return pos_type(off_type(first + (gptr() - eback())));
    }
};

/// What values are read from: any input, or one on a text in memory, where plain values can be taken directly. The
/// input is expected to use the classic locale.
class ValueInput
{
public:
    /// Borrows the input.
    explicit ValueInput(std::istream& in) : mStream(in) {}

    /// `in` is an input on `text`; borrows both.
    ValueInput(std::istream& in, TextBuffer& text) : mStream(in), mText(&text) {}

    /// The input, for what is not plain, and to see how reading went.
    std::istream& stream() const { return mStream; }

    /// Extracts one number as the input itself would; false, with nothing taken, when that is left to it.
    template <class T>
    bool takePlainNumber(T& value)
    {
        const std::string_view word = nextWords();
        const char* const end = word.empty() ? nullptr : readPlainNumber(word, value);
        if (end)
            mText->skipTo(end);
        return end;
    }

    /// Extracts the characters up to the next whitespace; none when that is left to the input.
    std::string_view takePlainWord()
    {
        const std::string_view words = nextWords();
        const auto end = std::find_if(words.begin(), words.end(), isClassicSpace);
        const std::string_view word = words.substr(0, static_cast<std::size_t>(end - words.begin()));
        if (!word.empty())
            mText->skipTo(word.data() + word.size());
        return word;
    }

    /// Extracts the characters at hand up to the first that fulfils the condition.
    template <class Condition>
    std::string_view takeUntil(Condition condition)
    {
        if (!mText)
            return {};
        const std::string_view rest = mText->rest();
        const auto end = std::find_if(rest.begin(), rest.end(), condition);
        mText->skipTo(rest.data() + (end - rest.begin()));
        return rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    }

private:
    /// What is left of the text behind the whitespace; none where it is not known, or after a failure.
    std::string_view nextWords() const
    {
        if (!mText || !mStream.good())
            return {};
        const std::string_view rest = mText->rest();
        const auto begin = std::find_if_not(rest.begin(), rest.end(), isClassicSpace);
        return rest.substr(static_cast<std::size_t>(begin - rest.begin()));
    }

    std::istream& mStream;
    TextBuffer* mText = nullptr;
};
} // namespace vumo::Data::detail
