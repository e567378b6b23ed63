#pragma once

#include "core/Session.h"
#include "vumo/accessor/ListedBlock.h"

#include <vector>

/// Says which patterns fit no name in what one scene holds, or two that are compared, with the nearest names. Of many
/// files not all need to have what is looked for, so nothing is said of a batch.
void tellUnmatched(Session& session, const std::vector<vumo::Data::ListedBlock>& blocks);
