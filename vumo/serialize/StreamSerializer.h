#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <iosfwd>
#include <set>
#include <string>

namespace vumo::Data
{
class Stream;

/// Writes and reads streams as text: the base of every stream format, and the registry where formats are
/// found by their names.
///
/// A format is one object, which its class's `theFormat()` gives. Register it to have it found by name; the
/// registry and the default only borrow it. A format that is destroyed leaves both by itself.
///
/// Threads may find and use formats at once. Registration and change of the default are not locked: they belong to the
/// time before threads start.
class VUMO_EXPORT StreamSerializer
{
public:
    StreamSerializer();
    StreamSerializer(const StreamSerializer&) = delete;
    StreamSerializer& operator=(const StreamSerializer&) = delete;

    /// The name of the format, the key to the registry; static text.
    virtual const char* formatType() const = 0;

    virtual ~StreamSerializer();

    /// A new object, owned by the caller; null, with the explanation appended to `errors`, when the text
    /// makes none.
    ///
    /// Throws nothing for bad text, unless the caller has switched on exceptions of `in`.
    virtual Stream* read(std::istream& in, std::string& errors) const = 0;

    /// Writes what it can. Returns the number of errors and then appends the explanation to `errors`.
    virtual int write(const Stream& stream, std::ostream& out, std::string& errors) const = 0;

    /// Writes a description of the format, for people; returns `out`.
    virtual std::ostream& getFormatDescription(std::ostream& out) const = 0;

    /// The registry, in the order of addresses. Null entries are passed over.
    static const std::set<const StreamSerializer*>& allFormats();
    static std::set<const StreamSerializer*>& allFormatsToEdit();

    /// Does not touch the default. Null does nothing, here and where formats are deregistered.
    static void registerFormat(const StreamSerializer* format);
    static void registerFormat(const StreamSerializer& format) { registerFormat(&format); }

    /// When the format is the default, registered or not, the first one left takes its place, or null.
    static void deregisterFormat(const StreamSerializer* format);
    static void deregisterFormat(const StreamSerializer& format) { deregisterFormat(&format); }

    /// Any format will do, registered or not; null means none.
    static void setDefaultFormat(const StreamSerializer* format);
    static const StreamSerializer* defaultFormat();

    /// The first registered format of exactly that name, or null.
    static const StreamSerializer* formatByName(const std::string& name);

    static bool Debug(const StreamSerializer* object, vumo::Debug::Print& request);
    static bool Debug(const StreamSerializer* object, vumo::Debug::Footprint& request);

private:
    static const StreamSerializer* theDefault;
};
} // namespace vumo::Data
