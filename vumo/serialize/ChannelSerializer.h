#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <iosfwd>
#include <set>
#include <string>

namespace vumo::Data
{
class Channel;

/// Writes and reads channels as text: the base of every channel format, and the registry where formats are
/// found by their names.
///
/// A format is one object, which its class's `theFormat()` gives. Register it to have it found by name; the
/// registry and the default only borrow it. A format that is destroyed leaves both by itself.
///
/// Threads may find and use formats at once. Registration and change of the default are not locked: they belong to the
/// time before threads start.
class VUMO_EXPORT ChannelSerializer
{
public:
    ChannelSerializer();
    ChannelSerializer(const ChannelSerializer&) = delete;
    ChannelSerializer& operator=(const ChannelSerializer&) = delete;

    /// The name of the format, the key to the registry; static text.
    virtual const char* formatType() const = 0;

    virtual ~ChannelSerializer();

    /// A new object, owned by the caller; null, with the explanation appended to `errors`, when the text
    /// makes none.
    ///
    /// Throws nothing for bad text, unless the caller has switched on exceptions of `in`.
    virtual Channel* read(std::istream& in, std::string& errors) const = 0;

    /// Writes what it can. Returns the number of errors and then appends the explanation to `errors`.
    virtual int write(const Channel& channel, std::ostream& out, std::string& errors) const = 0;

    /// Writes a description of the format, for people; returns `out`.
    virtual std::ostream& getFormatDescription(std::ostream& out) const = 0;

    /// The registry, in the order of addresses. Null entries are passed over.
    static const std::set<const ChannelSerializer*>& allFormats();
    static std::set<const ChannelSerializer*>& allFormatsToEdit();

    /// Does not touch the default. Null does nothing, here and where formats are deregistered.
    static void registerFormat(const ChannelSerializer* format);
    static void registerFormat(const ChannelSerializer& format) { registerFormat(&format); }

    /// When the format is the default, registered or not, the first one left takes its place, or null.
    static void deregisterFormat(const ChannelSerializer* format);
    static void deregisterFormat(const ChannelSerializer& format) { deregisterFormat(&format); }

    /// Any format will do, registered or not; null means none.
    static void setDefaultFormat(const ChannelSerializer* format);
    static const ChannelSerializer* defaultFormat();

    /// The first registered format of exactly that name, or null.
    static const ChannelSerializer* formatByName(const std::string& name);

    static bool Debug(const ChannelSerializer* object, vumo::Debug::Print& request);
    static bool Debug(const ChannelSerializer* object, vumo::Debug::Footprint& request);

private:
    static const ChannelSerializer* theDefault;
};
} // namespace vumo::Data
