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
} // namespace vumo::Data::detail
