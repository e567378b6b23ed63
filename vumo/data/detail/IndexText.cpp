#include "vumo/data/detail/IndexText.h"

#include "vumo/data/Index.h"

#include <locale>
#include <sstream>

namespace vumo::Data::detail
{
namespace
{
constexpr char kBlanks[] = " \t\r";
constexpr char kAllowed[] = "0123456789 \t\r";
} // namespace

void parseIndexNumbers(const std::string& text, unsigned int* numbers, unsigned int count)
{
    if (text.find_first_not_of(kAllowed) != std::string::npos)
        throw Index::eIllegalIndexText;

    std::istringstream in(text);
    in.imbue(std::locale::classic());
    for (unsigned int i = 0; i < count; ++i)
    {
        if (!(in >> numbers[i]))
            throw Index::eIllegalIndexText;
    }
    const std::streamoff end = in.tellg(); // none once the end of the text was met
    if (end >= 0 && text.find_first_not_of(kBlanks, static_cast<std::string::size_type>(end)) != std::string::npos)
        throw Index::eTrailingIndexText;
}

unsigned int placesBetween(unsigned int a, unsigned int b)
{
    return (a > b ? a - b : b - a) + 1;
}
} // namespace vumo::Data::detail
