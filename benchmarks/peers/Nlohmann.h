#pragma once

#include "benchmarks/peers/TextPeer.h"

namespace bench
{
/// `nlohmann::json`: a document of the records is made and dumped, or parsed and a map of records filled from it.
TextWriter nlohmannWriter();
TextReader nlohmannReader();
} // namespace bench
