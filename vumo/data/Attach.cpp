#include "vumo/data/Attach.h"

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
Attach::~Attach() = default;

bool Attach::Debug(const Attach* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::Attach", object, request);
}

bool Attach::Debug(const Attach* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
