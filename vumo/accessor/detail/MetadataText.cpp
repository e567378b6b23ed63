#include "vumo/accessor/detail/MetadataText.h"

#include "vumo/foundation/Ref.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/StructureSerializer.h"

#include <sstream>

namespace vumo::Data::detail
{
bool serializeStructure(const Structure& structure, std::string& text)
{
    const StructureSerializer* const serializer = StructureSerializer::formatByName(kFormatWritten);
    std::ostringstream out;
    if (!serializer || serializer->write(structure, out) != 0 || !out)
        return false;
    text = out.str();
    std::istringstream in(text);
    std::string ignored;
    const Ref<const Structure> readBack(serializer->read(in, ignored));
    return readBack && *readBack == structure;
}

bool serializeAssociations(const Associations& associations, std::string& text, std::string& errors)
{
    const AssociationsSerializer* const serializer = AssociationsSerializer::formatByName(kFormatWritten);
    std::ostringstream out;
    if (!serializer)
        return false;
    std::string ownErrors;
    const bool isWritten = serializer->write(associations, out, ownErrors) == 0 && out;
    errors += ownErrors;
    text = out.str();
    return isWritten;
}

bool usesOnly(const Accessor::StructureSet& structures, const Associations& associations, std::string& errors)
{
    for (const Channel& channel : associations)
    {
        for (const Stream* const stream : channel)
        {
            const auto found = structures.find(&stream->structure());
            if (found != structures.end() && **found == stream->structure())
                continue;
            errors += "Structure '" + std::string(stream->structure().name()) + "' of stream '" + stream->name() +
                      "' in channel '" + channel.name() + "' is not among the structures to be written.\n";
            return false;
        }
    }
    return true;
}
} // namespace vumo::Data::detail
