#pragma once

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

namespace vumo::Data::detail
{
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
} // namespace vumo::Data::detail
