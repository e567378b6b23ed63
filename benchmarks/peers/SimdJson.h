#pragma once

#include "benchmarks/peers/TextPeer.h"

namespace bench
{
/// `simdjson::dom::parser`, from whose document a map of records is filled, or `simdjson::ondemand::parser`, which
/// makes none. The parsers keep their memory from one round to the next, as their documentation advises.
TextReader simdJsonReader();
TextReader simdJsonOnDemandReader();
} // namespace bench
