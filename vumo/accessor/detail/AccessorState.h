#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/ListedBlock.h"
#include "vumo/accessor/detail/FileBlocks.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vumo::Data::detail
{
/// What an accessor holds, for those who read and write the files: the metadata, how its caller wants them saved, and
/// what it knows about the file.
struct AccessorState
{
    std::string fileName;
    Accessor::StructureSet structures; ///< one reference on each
    std::map<std::string, Associations> associations;
    Accessor::eDurability durability = Accessor::kJournal;
    eNumbers numbers = kSixDigits;
    Accessor::eUnread unread = Accessor::kDrop; ///< for the next read
    Accessor::eConflict conflict = Accessor::kRefuse;
    unsigned int lockWait = 0;                   ///< in milliseconds
    FileBlocks found;                            ///< by the last read
    std::uint64_t checksum = 0;                  ///< of the metadata in the file; 0: nothing is known about them
    std::vector<ListedBlock>* listing = nullptr; ///< the next read gives this and no metadata
};
} // namespace vumo::Data::detail
