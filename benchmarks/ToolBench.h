#pragma once

#include "benchmarks/Comparison.h"

/// The command-line tool, from its start to its end.
namespace bench
{
/// A scan of very many small scenes, against one `pread` of each and the parse of its texts.
void compareScan(Comparison& comparison);

/// What parses no values, or those of one node, against a read of all nodes.
void compareListing(Comparison& comparison);
void compareGet(Comparison& comparison);
} // namespace bench
