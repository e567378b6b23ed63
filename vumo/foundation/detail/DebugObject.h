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

/// Describes the static data of a class that keeps nothing there but the counts of its objects.
template <class T>
bool debugCounts(const char* className, vumo::Debug::Print& request)
{
    request << className << " : " << T::_objectsCreated << " created, " << T::_objectsAlive << " alive\n";
    return true;
}

template <class T>
bool debugCounts(vumo::Debug::Footprint& request)
{
    request.addMember(&T::_objectsCreated, sizeof(T::_objectsCreated));
    request.addMember(&T::_objectsAlive, sizeof(T::_objectsAlive));
    return true;
}
} // namespace vumo::detail
