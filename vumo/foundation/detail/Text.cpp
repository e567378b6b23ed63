#include "vumo/foundation/detail/Text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace vumo::detail
{
char* duplicateText(std::string_view text)
{
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (!copy)
        throw std::bad_alloc();
    *std::copy(text.begin(), text.end(), copy) = '\0';
    return copy;
}

bool equalTexts(const char* left, const char* right)
{
    if (left == right)
        return true;
    return left && right && std::strcmp(left, right) == 0;
}
} // namespace vumo::detail
