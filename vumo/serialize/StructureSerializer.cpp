#include "vumo/serialize/StructureSerializer.h"

#include "vumo/serialize/SerializerInitializer.h"
#include "vumo/serialize/StructureSerializerRaw.h"
#include "vumo/serialize/detail/FormatRegistry.h"

namespace vumo::Data
{
namespace
{
using Registry = detail::FormatRegistry<StructureSerializer>;

// Stands here and not beside the raw format: nothing may refer to that file of a static library, and a
// linker leaves out what nothing refers to.
const SerializerInitializer<StructureSerializerRaw> kRawInitializer;
} // namespace

const StructureSerializer* StructureSerializer::theDefault = nullptr;

StructureSerializer::StructureSerializer()
{
    Registry::formats(); // made before any format, it is there until the last of them is destroyed
}

StructureSerializer::~StructureSerializer()
{
    deregisterFormat(this);
}

const std::set<const StructureSerializer*>& StructureSerializer::allFormats()
{
    return Registry::formats();
}

std::set<const StructureSerializer*>& StructureSerializer::allFormatsToEdit()
{
    return Registry::formats();
}

void StructureSerializer::registerFormat(const StructureSerializer* format)
{
    Registry::add(format);
}

void StructureSerializer::deregisterFormat(const StructureSerializer* format)
{
    Registry::remove(format, theDefault);
}

void StructureSerializer::setDefaultFormat(const StructureSerializer* format)
{
    theDefault = format;
}

const StructureSerializer* StructureSerializer::defaultFormat()
{
    return theDefault;
}

const StructureSerializer* StructureSerializer::formatByName(const std::string& name)
{
    return Registry::findByName(name);
}

bool StructureSerializer::Debug(const StructureSerializer* object, vumo::Debug::Print& request)
{
    return Registry::debug(object, theDefault, request);
}

bool StructureSerializer::Debug(const StructureSerializer* object, vumo::Debug::Footprint& request)
{
    return Registry::debug(object, theDefault, request);
}
} // namespace vumo::Data
