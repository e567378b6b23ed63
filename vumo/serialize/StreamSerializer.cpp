#include "vumo/serialize/StreamSerializer.h"

#include "vumo/serialize/SerializerInitializer.h"
#include "vumo/serialize/StreamSerializerRaw.h"
#include "vumo/serialize/detail/FormatRegistry.h"

namespace vumo::Data
{
namespace
{
using Registry = detail::FormatRegistry<StreamSerializer>;

// Stands here and not beside the raw format: nothing may refer to that file of a static library, and a
// linker leaves out what nothing refers to.
const SerializerInitializer<StreamSerializerRaw> kRawInitializer;
} // namespace

const StreamSerializer* StreamSerializer::theDefault = nullptr;

StreamSerializer::StreamSerializer()
{
    Registry::formats(); // made before any format, it is there until the last of them is destroyed
}

StreamSerializer::~StreamSerializer()
{
    deregisterFormat(this);
}

const std::set<const StreamSerializer*>& StreamSerializer::allFormats()
{
    return Registry::formats();
}

std::set<const StreamSerializer*>& StreamSerializer::allFormatsToEdit()
{
    return Registry::formats();
}

void StreamSerializer::registerFormat(const StreamSerializer* format)
{
    Registry::add(format);
}

void StreamSerializer::deregisterFormat(const StreamSerializer* format)
{
    Registry::remove(format, theDefault);
}

void StreamSerializer::setDefaultFormat(const StreamSerializer* format)
{
    theDefault = format;
}

const StreamSerializer* StreamSerializer::defaultFormat()
{
    return theDefault;
}

const StreamSerializer* StreamSerializer::formatByName(const std::string& name)
{
    return Registry::findByName(name);
}

bool StreamSerializer::Debug(const StreamSerializer* object, vumo::Debug::Print& request)
{
    return Registry::debug(object, theDefault, request);
}

bool StreamSerializer::Debug(const StreamSerializer* object, vumo::Debug::Footprint& request)
{
    return Registry::debug(object, theDefault, request);
}
} // namespace vumo::Data
