#include "vumo/serialize/AssociationsSerializer.h"

#include "vumo/serialize/AssociationsSerializerRaw.h"
#include "vumo/serialize/SerializerInitializer.h"
#include "vumo/serialize/detail/FormatRegistry.h"

namespace vumo::Data
{
namespace
{
using Registry = detail::FormatRegistry<AssociationsSerializer>;

// Stands here and not beside the raw format: nothing may refer to that file of a static library, and a
// linker leaves out what nothing refers to.
const SerializerInitializer<AssociationsSerializerRaw> kRawInitializer;
} // namespace

const AssociationsSerializer* AssociationsSerializer::theDefault = nullptr;

AssociationsSerializer::AssociationsSerializer()
{
    Registry::formats(); // made before any format, it is there until the last of them is destroyed
}

AssociationsSerializer::~AssociationsSerializer()
{
    deregisterFormat(this);
}

const std::set<const AssociationsSerializer*>& AssociationsSerializer::allFormats()
{
    return Registry::formats();
}

std::set<const AssociationsSerializer*>& AssociationsSerializer::allFormatsToEdit()
{
    return Registry::formats();
}

void AssociationsSerializer::registerFormat(const AssociationsSerializer* format)
{
    Registry::add(format);
}

void AssociationsSerializer::deregisterFormat(const AssociationsSerializer* format)
{
    Registry::remove(format, theDefault);
}

void AssociationsSerializer::setDefaultFormat(const AssociationsSerializer* format)
{
    theDefault = format;
}

const AssociationsSerializer* AssociationsSerializer::defaultFormat()
{
    return theDefault;
}

const AssociationsSerializer* AssociationsSerializer::formatByName(const std::string& name)
{
    return Registry::findByName(name);
}

bool AssociationsSerializer::Debug(const AssociationsSerializer* object, vumo::Debug::Print& request)
{
    return Registry::debug(object, theDefault, request);
}

bool AssociationsSerializer::Debug(const AssociationsSerializer* object, vumo::Debug::Footprint& request)
{
    return Registry::debug(object, theDefault, request);
}
} // namespace vumo::Data
