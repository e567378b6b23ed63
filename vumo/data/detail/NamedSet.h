#pragma once

#include <algorithm>
#include <atomic>
#include <string>

namespace vumo::Data::detail
{
/// How often a stream or channel was renamed in this process. A set of them that is ordered by name can
/// rely on its order for as long as this number stays the same.
inline std::atomic<unsigned long long> theRenameCount = 0;

/// Finds the entry of that name in a set ordered by name, or its end.
///
/// An entry that shares its contents with one elsewhere can be renamed there, which the set does not
/// notice; its order cannot be relied on then. `orderedAt` is the rename count at which the order was last known to
/// be right; with a later one the set is searched from end to end, and checked.
template <class Set>
auto findNamed(Set& set, const std::string& name, std::atomic<unsigned long long>& orderedAt)
{
    const auto compare = set.key_comp();
    const unsigned long long now = theRenameCount; // before the check: what is renamed after it is not known
    bool isOrdered = orderedAt == now;
    if (!isOrdered && std::is_sorted(set.begin(), set.end(), compare))
    {
        isOrdered = true;
        orderedAt = now;
    }
    if (isOrdered)
        return set.find(name);
    return std::find_if(set.begin(), set.end(),
                        [&](const auto& entry) { return !compare(entry, name) && !compare(name, entry); });
}

/// The n-th entry, counted from 0, or the end.
template <class Set>
auto entryAt(Set& set, unsigned int n)
{
    auto position = set.begin();
    while (position != set.end() && n-- > 0)
        ++position;
    return position;
}
} // namespace vumo::Data::detail
