#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/ListedBlock.h"
#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/FileBlocks.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"

#include <cerrno>
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
    unsigned int lockWait = 0;                           ///< in milliseconds
    Accessor::eListing listing = Accessor::kListNothing; ///< for the next read
    FileBlocks found;                                    ///< by the last read
    std::vector<ListedBlock> listed;                     ///< likewise
    std::uint64_t checksum = 0;          ///< of the metadata in the file; 0: nothing is known about them
    Accessor::WriteCost* cost = nullptr; ///< the next write gives this and changes nothing
    Accessor::Failure failure;           ///< of the last read or write

    /// Takes note of why a step failed, unless that is known already: of the system's error, if there is one. False.
    bool fail(Accessor::Failure::eKind kind, int systemError = 0)
    {
        if (failure.kind == Accessor::Failure::kNone)
            failure = {systemError == 0 ? kind : Accessor::Failure::kSystem, systemError};
        return false;
    }
};

/// Why the file could not be opened.
inline Accessor::Failure openFailure(const File& file)
{
    using Failure = Accessor::Failure;
    switch (file.error())
    {
    case ENOENT:
    case ENOTDIR:
        return {Failure::kNoFile, file.error()};
    case EACCES:
    case EPERM:
    case EROFS:
        return {Failure::kNoAccess, file.error()};
    case EINVAL: // it is no regular file
    case EISDIR:
    case ENXIO: // it is a pipe or a socket
        return {Failure::kNotScene, file.error()};
    default:
        return {Failure::kSystem, file.error()};
    }
}
} // namespace vumo::Data::detail
