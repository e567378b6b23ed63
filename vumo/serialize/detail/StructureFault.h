#pragma once

#include "vumo/data/Structure.h"

#include <string>

namespace vumo::Data::detail
{
/// Why the raw text of the structure would not read back as an equal one; empty when nothing speaks against it.
std::string structureFault(const Structure& structure);
} // namespace vumo::Data::detail
