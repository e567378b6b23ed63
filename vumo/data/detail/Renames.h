#pragma once

namespace vumo::Data::detail
{
/// How often a stream or channel was renamed in this process. A set of them that is ordered by name can
/// rely on its order for as long as this number stays the same.
unsigned long long renameCount();
void countRename();
} // namespace vumo::Data::detail
