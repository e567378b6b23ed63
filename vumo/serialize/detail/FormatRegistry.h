#pragma once

#include "vumo/foundation/detail/DebugObject.h"

#include <algorithm>
#include <set>
#include <string>

namespace vumo::Data::detail
{
/// What the registries of the serializer kinds have alike. To be used in the kind's own source file only, so
/// that its set of formats exists once, in the library.
template <class Serializer>
struct FormatRegistry
{
    using Formats = std::set<const Serializer*>;

    static Formats& formats()
    {
        static Formats formats;
        return formats;
    }

    /// The format of the lowest address, passing over null entries; null when there is none.
    static const Serializer* firstFormat()
    {
        const Formats& all = formats();
        const auto found = std::find_if(all.begin(), all.end(), [](const Serializer* format) { return format; });
        return found == all.end() ? nullptr : *found;
    }

    static void add(const Serializer* format)
    {
        if (format)
            formats().insert(format);
    }

    /// Takes the format out, registered or not, and puts the first one left in its place as the default.
    static void remove(const Serializer* format, const Serializer*& theDefault)
    {
        if (!format)
            return; // whoever set no default did not mean the first one left, and null entries are the caller's
        formats().erase(format);
        if (theDefault == format)
            theDefault = firstFormat();
    }

    static const Serializer* findByName(const std::string& name)
    {
        for (const Serializer* format : formats())
        {
            if (format && name == format->formatType())
                return format;
        }
        return nullptr;
    }

    /// Describes a format, or for null the registry and the default.
    static bool debug(const Serializer* format, const Serializer* theDefault, vumo::Debug::Print& request)
    {
        if (format)
        {
            request << "Format '" << format->formatType() << "'\n";
            return true;
        }
        request.beginSection("Registered Formats");
        for (const Serializer* each : formats())
        {
            if (each)
                request << each->formatType() << (each == theDefault ? " (default)\n" : "\n");
        }
        request.endSection();
        return true;
    }

    static bool debug(const Serializer* format, const Serializer* const& theDefault, vumo::Debug::Footprint& request)
    {
        if (!format)
        {
            request.addMember(&formats(), sizeof(Formats) + formats().size() * sizeof(format));
            request.addMember(&theDefault, sizeof(theDefault));
        }
        return vumo::detail::debugObject(format, request);
    }
};
} // namespace vumo::Data::detail
