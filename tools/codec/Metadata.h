#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <map>
#include <string>

namespace vumo::codec
{
/// What a scene carries, or a part of it, apart from any file: the contents of a JSON or NDJSON text.
struct Metadata
{
    /// By name. References the structures.
    std::map<std::string, Ref<const Data::Structure>> structures;

    /// By node name; the scene's own under "".
    std::map<std::string, Data::Associations> nodes;

    /// Throws a `CodecError` when another structure has its name already, unless both are equal.
    void addStructure(const Data::Structure& structure);

    /// The same, and refuses one that is there.
    void addNewStructure(const Ref<const Data::Structure>& structure);

    /// Adds the structures that the streams use.
    void addUsedStructures();
};
} // namespace vumo::codec
