#pragma once

#include "vumo/accessor/ListedBlock.h"

#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// The channels and streams in the text of associations in the format "raw", by what their lines begin with. Parses no
/// index and no value, so the text may be faulty.
std::vector<ListedBlock::Channel> listChannels(std::string_view text);
} // namespace vumo::Data::detail
