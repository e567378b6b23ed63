#include "vumo/serialize/StructureSerializerDebug.h"

#include "vumo/foundation/Print.h"
#include "vumo/serialize/detail/FormatInstance.h"

namespace vumo::Data
{
namespace
{
constexpr char kDescription[] = "\nThe Debug format will be self-explanatory"
                                "\nas it dumps all of the  information about"
                                "\nthe structure in a verbose format.";
} // namespace

const char* const StructureSerializerDebug::structureFormatType = "debug";

std::atomic<StructureSerializerDebug*> StructureSerializerDebug::theInstance = nullptr;

StructureSerializerDebug* StructureSerializerDebug::theFormat()
{
    return detail::theOnly(theInstance);
}

StructureSerializerDebug::StructureSerializerDebug() = default;

const char* StructureSerializerDebug::formatType() const
{
    return structureFormatType;
}

StructureSerializerDebug::~StructureSerializerDebug() = default;

Structure* StructureSerializerDebug::read(std::istream&, std::string& errors) const
{
    errors = "Cannot read the debug format";
    return nullptr;
}

int StructureSerializerDebug::write(const Structure& structure, std::ostream& out) const
{
    vumo::Debug::Print printer(out);
    return Structure::Debug(&structure, printer) ? 0 : 1;
}

std::ostream& StructureSerializerDebug::getFormatDescription(std::ostream& out) const
{
    return out << kDescription;
}

bool StructureSerializerDebug::Debug(const StructureSerializerDebug* object, vumo::Debug::Print& request)
{
    return detail::debugFormat("vumo::Data::StructureSerializerDebug", object, theInstance, request);
}

bool StructureSerializerDebug::Debug(const StructureSerializerDebug* object, vumo::Debug::Footprint& request)
{
    return detail::debugFormat(object, theInstance, request);
}
} // namespace vumo::Data
