#pragma once

#include "tools/codec/Metadata.h"

#include <iosfwd>

namespace vumo::codec
{
/// Metadata as lines of JSON, one for each structure, stream and element; docs/formats/json.md describes them.

/// Whether the lines are known to be all that were written.
enum eNdjsonLines
{
    kCounted,  ///< they end with the one that counts them
    kUncounted ///< that one need not be there, nor be right
};

/// Writes what writeJson() writes, and refuses the same.
void writeNdjson(Metadata metadata, std::ostream& out);

/// Reads the input to its end; blank lines mean nothing. Throws a `CodecError` that tells the line.
Metadata readNdjson(std::istream& in, eNdjsonLines lines = kCounted);
} // namespace vumo::codec
