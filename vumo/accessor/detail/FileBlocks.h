#pragma once

#include "vumo/accessor/MetadataBlock.h"

#include <vector>

namespace vumo::Data::detail
{
/// A piece of metadata in a scene file and what became of it when the file was read.
struct FileBlock : MetadataBlock
{
    enum eState
    {
        kRead,
        kUnread, ///< a filter did not want it, or it cannot be read
        kOutdone ///< another one of its name counts
    };

    eState state = kRead;
};
} // namespace vumo::Data::detail
