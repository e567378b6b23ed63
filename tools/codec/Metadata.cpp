#include "tools/codec/Metadata.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Json.h"

using namespace vumo::Data;

namespace vumo::codec
{
void Metadata::addStructure(const Structure& structure)
{
    const Ref<const Structure>& known =
        structures.emplace(structure.name(), Ref<const Structure>(&structure)).first->second;
    if (*known != structure)
        throw CodecError("there are two different structures " + jsonText(structure.name()));
}

void Metadata::addNewStructure(const Ref<const Structure>& structure)
{
    if (!structures.emplace(structure->name(), structure).second)
        throw CodecError("the structure " + jsonText(structure->name()) + " comes twice");
}

void Metadata::addUsedStructures()
{
    for (const auto& node : nodes)
    {
        for (const Channel& channel : node.second)
        {
            for (const Stream* const stream : channel)
                addStructure(stream->structure());
        }
    }
}
} // namespace vumo::codec
