#pragma once

#include "vumo/accessor/MetadataBlock.h"

#include <string>

namespace vumo::Data
{
/// A piece of metadata that a read left in the file. The name of a structure that cannot be read is empty.
struct UnreadBlock : MetadataBlock
{
    std::string why; ///< the messages that tell what is wrong with it; empty when a filter did not want it
};
} // namespace vumo::Data
