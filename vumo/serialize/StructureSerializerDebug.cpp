#include "vumo/serialize/StructureSerializerDebug.h"

#include "vumo/foundation/Print.h"

namespace vumo::Data
{
namespace
{
constexpr char kDescription[] = "\nThe Debug format will be self-explanatory"
                                "\nas it dumps all of the  information about"
                                "\nthe structure in a verbose format.";
} // namespace

const char* const StructureSerializerDebug::structureFormatType = "debug";

StructureSerializerDebug* StructureSerializerDebug::theInstance = nullptr;

StructureSerializerDebug* StructureSerializerDebug::theFormat()
{
    if (!theInstance)
        theInstance = new StructureSerializerDebug();
    return theInstance;
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
} // namespace vumo::Data
