#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/ListedBlock.h"

#include <vector>

/// What an accessor has read of a file that cannot be listed, as a listing: without a format, places and bytes.
/// Of nodes that were left unread the names alone are known.
std::vector<vumo::Data::ListedBlock> listingOf(const vumo::Data::Accessor& metadata);
