#include "vumo/data/Attach.h"

namespace vumo::Data
{
Attach::~Attach() = default;
} // namespace vumo::Data
