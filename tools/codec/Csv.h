#pragma once

#include "vumo/data/Stream.h"
#include "vumo/data/Structure.h"

#include <iosfwd>
#include <string>

namespace vumo::codec
{
/// One stream as comma-separated values, which docs/formats/csv.md describes: a line of titles, then a line for each
/// element, its index and its values.

/// Throws a `CodecError`, after a part of the text, for what no scene file could hold.
void writeCsv(const Data::Stream& stream, std::ostream& out);

/// Reads the input to its end: a new stream of the structure. Its index type follows from the titles. Throws a
/// `CodecError` that tells the line.
Data::Stream readCsv(std::istream& in, const Data::Structure& structure, const std::string& name);
} // namespace vumo::codec
