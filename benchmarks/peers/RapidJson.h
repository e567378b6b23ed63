#pragma once

#include "benchmarks/peers/TextPeer.h"

namespace bench
{
/// `rapidjson::Writer` into a `StringBuffer`. It is given doubles that have six digits in its shortest form, which is
/// the fastest that it has.
TextWriter rapidJsonWriter();

/// `rapidjson::Document`, parsed in situ, from which a map of records is filled.
TextReader rapidJsonReader();
} // namespace bench
