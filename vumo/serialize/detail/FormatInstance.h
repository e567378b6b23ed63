#pragma once

#include "vumo/foundation/detail/DebugObject.h"

#include <atomic>

namespace vumo::Data::detail
{
/// The one object of the format, made with the first call and never destroyed: its kind's registry may know it until
/// the program ends. Threads may ask for it at once.
template <class Format>
Format* theOnly(std::atomic<Format*>& theInstance)
{
    static Format* const theMade = theInstance = new Format();
    return theMade;
}

/// Describes a format, or for null the one static of its class: whether there is the one object of it.
template <class Format>
bool debugFormat(const char* className, const Format* format, const std::atomic<Format*>& theInstance,
                 vumo::Debug::Print& request)
{
    if (format)
        return vumo::detail::debugObject(className, format, request);
    request << className << " : " << (theInstance ? "made" : "not made") << "\n";
    return true;
}

template <class Format>
bool debugFormat(const Format* format, const std::atomic<Format*>& theInstance, vumo::Debug::Footprint& request)
{
    if (!format)
        request.addMember(&theInstance, sizeof(theInstance));
    return vumo::detail::debugObject(format, request);
}
} // namespace vumo::Data::detail
