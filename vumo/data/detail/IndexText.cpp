#include "vumo/data/detail/IndexText.h"

#include "vumo/data/Index.h"

#include <algorithm>
#include <charconv>

namespace vumo::Data::detail
{
namespace
{
constexpr char kBlanks[] = " \t\r";
constexpr char kAllowed[] = "0123456789 \t\r";
} // namespace

void parseIndexNumbers(std::string_view text, unsigned int* numbers, unsigned int count)
{
    if (text.find_first_not_of(kAllowed) != std::string_view::npos)
        throw Index::eIllegalIndexText;

    for (unsigned int i = 0; i < count; ++i)
    {
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        const char* const end = text.data() + text.size();
        const std::from_chars_result result = std::from_chars(text.data(), end, numbers[i]);
        if (result.ec != std::errc())
            throw Index::eIllegalIndexText;
        text.remove_prefix(static_cast<std::string_view::size_type>(result.ptr - text.data()));
    }
    if (text.find_first_not_of(kBlanks) != std::string_view::npos)
        throw Index::eTrailingIndexText;
}

unsigned int placesBetween(unsigned int a, unsigned int b)
{
    return (a > b ? a - b : b - a) + 1;
}
} // namespace vumo::Data::detail
