#pragma once

#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// Which way convertString() goes, between the encoding of the current locale and UTF-8.
enum class eTextDirection
{
    kToUtf8,
    kFromUtf8
};

/// Gives the converted text. False when the text is to be used as it is: the two encodings are one, or write this text
/// alike, or the text cannot be converted as a whole.
bool convertString(std::string_view text, eTextDirection direction, std::string& converted);

/// Says whether a text of a file would become other characters when it is read and written again: UTF-8 that the
/// encoding of the locale cannot express is read as it is, and its bytes can mean something in that encoding, too.
bool isChangedByRewriting(std::string_view utf8);

/// Says whether that can happen to any text in the current locale.
bool canChangeByRewriting();

/// Says whether a reader gets the text again from what is written in its place: itself, or its conversion to UTF-8.
bool isConvertedBack(std::string_view text, std::string_view written);
} // namespace vumo::Data::detail
