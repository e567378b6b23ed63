#pragma once

#include <cstdlib>
#include <memory>

namespace vumo
{
/// Releases what strdup made.
struct FreeText
{
    void operator()(char* text) const { std::free(text); }
};

/// Owns a zero-terminated text made by strdup, or null.
using OwnedText = std::unique_ptr<char, FreeText>;
} // namespace vumo
