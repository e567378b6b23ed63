#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"

#include <string>

namespace vumo::Data::detail
{
/// The format of all texts that are written into scene files.
constexpr char kFormatWritten[] = "raw";

/// The text of a structure. False when there is none, or one that does not read back as an equal structure: the file
/// could not be read again.
bool serializeStructure(const Structure& structure, std::string& text);

/// The text of associations. False, with the serializer's messages appended to `errors`, when there is none.
bool serializeAssociations(const Associations& associations, std::string& text, std::string& errors);

/// Says whether the structure of every stream is among those that are written, as elements cannot be read without it.
/// Names the first that is not in `errors`.
bool usesOnly(const Accessor::StructureSet& structures, const Associations& associations, std::string& errors);
} // namespace vumo::Data::detail
