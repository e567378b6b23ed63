#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <ostream>
#include <streambuf>
#include <string>

namespace vumo::detail
{
/// Appends what is written to a string.
class StringBuffer : public std::streambuf
{
public:
    /// Borrows the string.
    explicit StringBuffer(std::string& text) : mText(text) {}

protected:
    int_type overflow(int_type character) override
    {
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            mText += traits_type::to_char_type(character);
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* characters, std::streamsize count) override
    {
        mText.append(characters, static_cast<std::string::size_type>(count));
        return count;
    }

private:
    std::string& mText;
};

/// An output whose text stands at once in the string that it is meant for. Borrows the string.
class StringOutput : public std::ostream
{
public:
    explicit StringOutput(std::string& text) : std::ostream(nullptr), mBuffer(text) { rdbuf(&mBuffer); }

private:
    StringBuffer mBuffer;
};
} // namespace vumo::detail
