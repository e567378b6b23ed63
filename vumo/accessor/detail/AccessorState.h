#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/detail/FileBlocks.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"

#include <map>
#include <string>

namespace vumo::Data::detail
{
/// What an accessor holds, for those who read and write the files: the metadata, and how its caller wants them saved.
struct AccessorState
{
    std::string fileName;
    Accessor::StructureSet structures; ///< one reference on each
    std::map<std::string, Associations> associations;
    Accessor::eDurability durability = Accessor::kJournal;
    eNumbers numbers = kSixDigits;
    Accessor::eUnread unread = Accessor::kDrop; ///< for the next read
    FileBlocks found;                           ///< by the last read
};
} // namespace vumo::Data::detail
