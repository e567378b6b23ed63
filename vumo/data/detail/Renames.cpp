#include "vumo/data/detail/Renames.h"

namespace vumo::Data::detail
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
} // namespace vumo::Data::detail
