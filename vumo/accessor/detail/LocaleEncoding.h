#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// Passes the texts of binary scene files, which are UTF-8 there, to the encoding of the current locale and back.
///
/// Opens either conversion once, for the first text that needs it, and for the locale that is current then; so make one
/// for each read or write.
class LocaleEncoding
{
public:
    LocaleEncoding();
    LocaleEncoding(const LocaleEncoding&) = delete;
    LocaleEncoding& operator=(const LocaleEncoding&) = delete;
    ~LocaleEncoding();

    /// Gives the converted text. False when the text is to be used as it is: the two encodings are one, or write this
    /// text alike, or the text cannot be converted as a whole.
    bool toUtf8(std::string_view text, std::string& converted) const;
    bool fromUtf8(std::string_view text, std::string& converted) const;

    /// Says whether a reader gets the text again from what is written in its place: itself, or its conversion to UTF-8.
    bool isReadBack(std::string_view text, std::string_view written) const;

    /// Says whether a text of a file would become other characters when it is read and written again: UTF-8 that the
    /// encoding cannot express is read as it is, and its bytes can mean something in that encoding, too.
    bool changesByRewriting(std::string_view utf8) const;

    /// Says whether that can happen to any text. If not, nobody needs to look.
    bool canChangeByRewriting() const;

private:
    class Converter;
    using Way = std::optional<std::unique_ptr<Converter>>; // null: all texts are used as they are

    bool convert(Way& way, const char* from, const char* to, std::string_view text, std::string& converted) const;

    mutable Way mToUtf8;
    mutable Way mFromUtf8;
    const bool mIsAscii; // of the locale: what ASCII does not have is read and written as it is
};
} // namespace vumo::Data::detail
