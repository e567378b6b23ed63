#pragma once

#include "vumo/foundation/detail/Namespace.h"
#include "vumo/foundation/detail/PlainNumber.h"

#include <string_view>

namespace vumo::detail
{
/// The text without the whitespace at its ends.
inline std::string_view trimmed(std::string_view text)
{
    std::string_view::size_type end = text.size();
    while (end > 0 && isClassicSpace(text[end - 1]))
        --end;
    std::string_view::size_type begin = 0;
    while (begin < end && isClassicSpace(text[begin]))
        ++begin;
    return text.substr(begin, end - begin);
}
} // namespace vumo::detail
