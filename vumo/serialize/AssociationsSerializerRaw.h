#pragma once

#include "vumo/data/Associations.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/SerializerRaw.h"

#include <atomic>
#include <iosfwd>
#include <string>

namespace vumo::Data
{
/// The format "raw" of associations: their channels, each a line "channel" and the raw format of
/// `ChannelSerializerRaw`, and the line "endAssociations". Channels without streams are left out.
class VUMO_EXPORT AssociationsSerializerRaw : public AssociationsSerializer, private SerializerRaw
{
public:
    /// The one format, made with the first call, which also makes it the default.
    static AssociationsSerializerRaw* theFormat();

    /// Makes the new object the default.
    AssociationsSerializerRaw();

    const char* formatType() const override;
    ~AssociationsSerializerRaw() override;

    /// Reads to the word "endAssociations" and nothing after it. The input may also end after a channel, or
    /// be empty. What follows "channel" on its line is not looked at: the channel tells its own name.
    Associations* read(std::istream& in, std::string& errors) const override;

    int write(const Associations& associations, std::ostream& out, std::string& errors) const override;
    std::ostream& getFormatDescription(std::ostream& out) const override;

    static bool Debug(const AssociationsSerializerRaw* object, vumo::Debug::Print& request);
    static bool Debug(const AssociationsSerializerRaw* object, vumo::Debug::Footprint& request);

private:
    static std::atomic<AssociationsSerializerRaw*> theInstance;
};
} // namespace vumo::Data
