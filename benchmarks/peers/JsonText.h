#pragma once

#include "benchmarks/peers/TextPeer.h"

#include <string>
#include <vector>

namespace bench
{
/// The records as JSON, an array of objects with an index each. Its numbers are as long as those in the library's
/// text: six significant digits.
std::string jsonText(const std::vector<Record>& records);
} // namespace bench
