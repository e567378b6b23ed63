#pragma once

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/Namespace.h"

namespace vumo::detail
{
/// How a class describes itself that tells nothing but the kind of its objects, and keeps no static data.
template <class T>
bool debugObject(const char* className, const T* object, vumo::Debug::Print& request)
{
    if (object)
        request << className << "\n";
    return true;
}

template <class T>
bool debugObject(const T* object, vumo::Debug::Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::detail
