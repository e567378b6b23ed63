#include "vumo/data/detail/Text.h"

#include <cstring>
#include <new>

namespace vumo::Data::detail
{
char* duplicateText(const char* text)
{
    if (!text)
        return nullptr;
    char* const copy = strdup(text);
    if (!copy)
        throw std::bad_alloc();
    return copy;
}

bool equalTexts(const char* left, const char* right)
{
    if (left == right)
        return true;
    return left && right && std::strcmp(left, right) == 0;
}
} // namespace vumo::Data::detail
