#pragma once

#include "tools/codec/Metadata.h"

#include <iosfwd>
#include <string>

namespace vumo::codec
{
/// Metadata as one JSON document, which docs/formats/json.md describes.

/// Writes the structures and all nodes and channels that have streams. Throws a `CodecError`, after a part of the
/// document, for what no scene file could hold: two structures of one name, an index of another type, a number that is
/// not finite.
void writeJson(Metadata metadata, std::ostream& out);

/// The same as a text without a newline at its end, to stand in another document.
std::string jsonDocument(Metadata metadata);

/// Reads the input to its end, which must hold one document. Throws a `CodecError`.
Metadata readJson(std::istream& in);
} // namespace vumo::codec
