#pragma once

#include "benchmarks/peers/TextPeer.h"

namespace bench
{
/// `rapidjson::Writer` into a `StringBuffer`, numbers with at most six decimal places: of the digits that the writer
/// offers to leave out, all that the library leaves out too.
TextWriter rapidJsonWriter();

/// `rapidjson::Document`, from which a map of records is filled.
TextReader rapidJsonReader();
} // namespace bench
