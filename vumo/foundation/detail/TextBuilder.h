#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>

namespace vumo::detail
{
/// A text that grows piece by piece. Many small pieces cost less than with a string, because they are written in
/// place and nothing is kept up between them.
class TextBuilder
{
public:
    std::string_view text() const { return {mChars.get(), mSize}; }
    bool empty() const { return mSize == 0; }

    /// Keeps the memory.
    void clear() { mSize = 0; }

    void append(char c)
    {
        *room(1) = c;
        ++mSize;
    }

    void append(std::string_view text)
    {
        std::copy(text.begin(), text.end(), room(text.size()));
        mSize += text.size();
    }

    /// The end of the text, where that many characters may be written; setEnd() makes them a part of it.
    char* room(std::size_t count)
    {
        if (mCapacity - mSize < count)
            grow(count);
        return mChars.get() + mSize;
    }

    void setEnd(const char* end) { mSize = static_cast<std::size_t>(end - mChars.get()); }

private:
    void grow(std::size_t count)
    {
        constexpr std::size_t kLeastCapacity = 256; // most lines fit
        const std::size_t capacity = std::max({mSize + count, mCapacity * 2, kLeastCapacity});
        std::unique_ptr<char[]> chars(new char[capacity]);
        std::copy_n(mChars.get(), mSize, chars.get());
        mChars.swap(chars);
        mCapacity = capacity;
    }

    std::unique_ptr<char[]> mChars;
    std::size_t mSize = 0;
    std::size_t mCapacity = 0;
};
} // namespace vumo::detail
