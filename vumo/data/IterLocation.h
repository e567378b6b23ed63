#pragma once

namespace vumo
{
namespace Data
{
/// Where a new iterator stands; any other value means the end, too.
enum IterLocation : int
{
    kIterEnd = 0,
    kIterBegin = 1
};
} // namespace Data
} // namespace vumo
