#include "vumo/data/detail/Renames.h"

namespace vumo
{
namespace Data
{
namespace detail
{
namespace
{
unsigned long long theRenameCount = 0;
} // namespace

unsigned long long renameCount()
{
    return theRenameCount;
}

void countRename()
{
    ++theRenameCount;
}
} // namespace detail
} // namespace Data
} // namespace vumo
