#pragma once

#include "benchmarks/peers/TextPeer.h"

namespace bench
{
/// `simdjson::dom::parser`, from whose document a map of records is filled. The parser keeps its memory from one round
/// to the next, as its documentation advises.
TextReader simdJsonReader();
} // namespace bench
