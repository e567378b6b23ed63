#include "vumo/foundation/Count.h"

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Debug
{
bool Count::Debug(const Count* object, Print& request)
{
    if (object)
        request << object->mValue << "\n";
    return true;
}

bool Count::Debug(const Count* object, Footprint& request)
{
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Debug
