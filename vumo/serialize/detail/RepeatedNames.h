#pragma once

#include <set>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// Those of the names that come more than once. In a set ordered by name that happens to entries that were renamed
/// behind its back.
std::set<std::string_view> repeatedNames(std::vector<std::string_view> names);
} // namespace vumo::Data::detail
