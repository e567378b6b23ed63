#pragma once

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data::detail
{
/// The one object of the format, made with the first call and never destroyed: its kind's registry may know it until
/// the program ends.
template <class Format>
Format* theOnly(Format*& theInstance)
{
    if (!theInstance)
        theInstance = new Format();
    return theInstance;
}

/// Describes a format, or for null the one static of its class: whether there is the one object of it.
template <class Format>
bool debugFormat(const char* className, const Format* format, const Format* theInstance, vumo::Debug::Print& request)
{
    if (format)
        return vumo::detail::debugObject(className, format, request);
    request << className << " : " << (theInstance ? "made" : "not made") << "\n";
    return true;
}

template <class Format>
bool debugFormat(const Format* format, Format* const& theInstance, vumo::Debug::Footprint& request)
{
    if (!format)
        request.addMember(&theInstance, sizeof(theInstance));
    return vumo::detail::debugObject(format, request);
}
} // namespace vumo::Data::detail
