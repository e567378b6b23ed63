#include "vumo/data/detail/IndexText.h"

#include "vumo/data/Index.h"

#include <algorithm>
#include <charconv>

namespace vumo::Data::detail
{
namespace
{
bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r'; // the last: a line may end as on other systems
}

bool isAllowed(char c)
{
    return (c >= '0' && c <= '9') || isBlank(c);
}
} // namespace

void parseIndexNumbers(std::string_view text, unsigned int* numbers, unsigned int count)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    for (unsigned int i = 0; i < count; ++i)
    {
        const std::from_chars_result result = std::from_chars(std::find_if_not(at, end, isBlank), end, numbers[i]);
        if (result.ec != std::errc())
            throw Index::eIllegalIndexText;
        at = result.ptr;
    }
    // Digits that are left over are too much; any other character makes no index wherever it stands.
    if (!std::all_of(at, end, isBlank))
        throw std::all_of(at, end, isAllowed) ? Index::eTrailingIndexText : Index::eIllegalIndexText;
}
} // namespace vumo::Data::detail
