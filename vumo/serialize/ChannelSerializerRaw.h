#pragma once

#include "vumo/data/Channel.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/serialize/ChannelSerializer.h"
#include "vumo/serialize/SerializerRaw.h"

#include <atomic>
#include <iosfwd>
#include <string>

namespace vumo::Data
{
/// The format "raw" of channels: a line with the channel's name, its streams, each a line "stream" and the raw
/// format of `StreamSerializerRaw`, and the line "endChannel".
class VUMO_EXPORT ChannelSerializerRaw : public ChannelSerializer, private SerializerRaw
{
public:
    /// The one format, made with the first call, which also makes it the default.
    static ChannelSerializerRaw* theFormat();

    /// Makes the new object the default.
    ChannelSerializerRaw();

    const char* formatType() const override;
    ~ChannelSerializerRaw() override;

    /// Reads to the line "endChannel" and nothing after it. A channel without a "name" line is "Unnamed"; of
    /// several the last one counts, and so does the last of several streams of one name.
    Channel* read(std::istream& in, std::string& errors) const override;

    int write(const Channel& channel, std::ostream& out, std::string& errors) const override;
    std::ostream& getFormatDescription(std::ostream& out) const override;

    static bool Debug(const ChannelSerializerRaw* object, vumo::Debug::Print& request);
    static bool Debug(const ChannelSerializerRaw* object, vumo::Debug::Footprint& request);

private:
    static std::atomic<ChannelSerializerRaw*> theInstance;
};
} // namespace vumo::Data
