#include "vumo/serialize/ChannelSerializer.h"

#include "vumo/serialize/ChannelSerializerRaw.h"
#include "vumo/serialize/SerializerInitializer.h"
#include "vumo/serialize/detail/FormatRegistry.h"

namespace vumo::Data
{
namespace
{
using Registry = detail::FormatRegistry<ChannelSerializer>;

// Stands here and not beside the raw format: nothing may refer to that file of a static library, and a
// linker leaves out what nothing refers to.
const SerializerInitializer<ChannelSerializerRaw> kRawInitializer;
} // namespace

const ChannelSerializer* ChannelSerializer::theDefault = nullptr;

ChannelSerializer::ChannelSerializer()
{
    Registry::formats(); // made before any format, it is there until the last of them is destroyed
}

ChannelSerializer::~ChannelSerializer()
{
    deregisterFormat(this);
}

const std::set<const ChannelSerializer*>& ChannelSerializer::allFormats()
{
    return Registry::formats();
}

std::set<const ChannelSerializer*>& ChannelSerializer::allFormatsToEdit()
{
    return Registry::formats();
}

void ChannelSerializer::registerFormat(const ChannelSerializer* format)
{
    Registry::add(format);
}

void ChannelSerializer::deregisterFormat(const ChannelSerializer* format)
{
    Registry::remove(format, theDefault);
}

void ChannelSerializer::setDefaultFormat(const ChannelSerializer* format)
{
    theDefault = format;
}

const ChannelSerializer* ChannelSerializer::defaultFormat()
{
    return theDefault;
}

const ChannelSerializer* ChannelSerializer::formatByName(const std::string& name)
{
    return Registry::findByName(name);
}

bool ChannelSerializer::Debug(const ChannelSerializer* object, vumo::Debug::Print& request)
{
    return Registry::debug(object, theDefault, request);
}

bool ChannelSerializer::Debug(const ChannelSerializer* object, vumo::Debug::Footprint& request)
{
    return Registry::debug(object, theDefault, request);
}
} // namespace vumo::Data
