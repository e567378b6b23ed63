#include "vumo/serialize/detail/RepeatedNames.h"

#include <algorithm>

namespace vumo::Data::detail
{
std::set<std::string_view> repeatedNames(std::vector<std::string_view> names)
{
    if (!std::is_sorted(names.begin(), names.end()))
        std::sort(names.begin(), names.end());
    std::set<std::string_view> repeated;
    const auto end = names.end();
    for (auto name = std::adjacent_find(names.begin(), end); name != end; name = std::adjacent_find(name + 1, end))
        repeated.insert(*name);
    return repeated;
}
} // namespace vumo::Data::detail
