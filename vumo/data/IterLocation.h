#pragma once

namespace vumo::Data
{
/// Where a new iterator stands; any other value means the end, too.
enum IterLocation : int
{
    kIterEnd = 0,
    kIterBegin = 1
};
} // namespace vumo::Data
