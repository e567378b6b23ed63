#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <iosfwd>
#include <set>
#include <string>

namespace vumo::Data
{
class Structure;

/// Writes and reads structures as text: the base of every structure format, and the registry where formats are
/// found by their names.
///
/// A format is one object, which its class's `theFormat()` gives. Register it to have it found by name; the
/// registry and the default only borrow it. A format that is destroyed leaves both by itself.
///
/// Threads may find and use formats at once. Registration and change of the default are not locked: they belong to the
/// time before threads start.
class VUMO_EXPORT StructureSerializer
{
public:
    StructureSerializer();
    StructureSerializer(const StructureSerializer&) = delete;
    StructureSerializer& operator=(const StructureSerializer&) = delete;

    /// The name of the format, the key to the registry; static text.
    virtual const char* formatType() const = 0;

    virtual ~StructureSerializer();

    /// A new structure, neither registered nor held by anybody; null, with the explanation in `errors`, when
    /// the text makes none.
    ///
    /// Throws nothing for bad text, unless the caller has switched on exceptions of `in`.
    virtual Structure* read(std::istream& in, std::string& errors) const = 0;

    /// Returns the number of errors. Takes no reference: a structure that nobody holds survives this.
    virtual int write(const Structure& structure, std::ostream& out) const = 0;

    /// Writes a description of the format, for people; returns `out`.
    virtual std::ostream& getFormatDescription(std::ostream& out) const = 0;

    /// The registry, in the order of addresses. Null entries are passed over.
    static const std::set<const StructureSerializer*>& allFormats();
    static std::set<const StructureSerializer*>& allFormatsToEdit();

    /// Does not touch the default. Null does nothing, here and where formats are deregistered.
    static void registerFormat(const StructureSerializer* format);
    static void registerFormat(const StructureSerializer& format) { registerFormat(&format); }

    /// When the format is the default, registered or not, the first one left takes its place, or null.
    static void deregisterFormat(const StructureSerializer* format);
    static void deregisterFormat(const StructureSerializer& format) { deregisterFormat(&format); }

    /// Any format will do, registered or not; null means none.
    static void setDefaultFormat(const StructureSerializer* format);
    static const StructureSerializer* defaultFormat();

    /// The first registered format of exactly that name, or null.
    static const StructureSerializer* formatByName(const std::string& name);

    static bool Debug(const StructureSerializer* object, vumo::Debug::Print& request);
    static bool Debug(const StructureSerializer* object, vumo::Debug::Footprint& request);

private:
    static const StructureSerializer* theDefault;
};
} // namespace vumo::Data
