#pragma once

namespace vumo::Data::detail
{
/// A copy of `text` to be released by `free`; null for null. Throws `std::bad_alloc` where strdup fails.
char* duplicateText(const char* text);

/// Says whether both are null or both are the same text.
bool equalTexts(const char* left, const char* right);
} // namespace vumo::Data::detail
