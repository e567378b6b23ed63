#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <cstring>
#include <new>
#include <string_view>

namespace vumo::detail
{
/// A copy of `text` to be released by `free`; null for null. Throws `std::bad_alloc` where strdup fails.
inline char* duplicateText(const char* text)
{
    char* const copy = text ? strdup(text) : nullptr;
    if (text && !copy)
        throw std::bad_alloc();
    return copy;
}

/// The same for a text without zeros, never null.
char* duplicateText(std::string_view text);

/// Says whether both are null or both are the same text.
bool equalTexts(const char* left, const char* right);
} // namespace vumo::detail
