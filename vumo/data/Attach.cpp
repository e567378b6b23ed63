#include "vumo/data/Attach.h"

namespace vumo
{
namespace Data
{
Attach::~Attach() = default;
} // namespace Data
} // namespace vumo
