#pragma once

#include <string>

namespace vumo::Data::detail
{
/// Which way convertString() goes, between the encoding of the current locale and UTF-8.
enum class eTextDirection
{
    kToUtf8,
    kFromUtf8
};

/// The converted text. A text that cannot be converted as a whole is returned as it is, and so is every text
/// where the two encodings are one.
std::string convertString(const std::string& text, eTextDirection direction);
} // namespace vumo::Data::detail
