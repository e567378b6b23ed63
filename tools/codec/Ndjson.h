#pragma once

#include "tools/codec/Metadata.h"

#include <iosfwd>

namespace vumo::codec
{
/// Metadata as lines of JSON, one for each structure, stream and element; docs/formats/json.md describes them.

/// Writes what writeJson() writes, and refuses the same.
void writeNdjson(Metadata metadata, std::ostream& out);

/// Reads the input to its end; blank lines mean nothing. Throws a `CodecError` that tells the line.
Metadata readNdjson(std::istream& in);
} // namespace vumo::codec
