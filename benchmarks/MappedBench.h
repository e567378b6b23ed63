#pragma once

#include "benchmarks/Comparison.h"
#include "benchmarks/Records.h"

#include <vector>

/// Mapped storage against maps.
namespace bench
{
void compareShuffledInsert(Comparison& comparison);
void compareShuffledLookup(Comparison& comparison);
void compareIteration(Comparison& comparison);
void compareAscendingInsert(Comparison& comparison);
void compareTextInsert(Comparison& comparison);
void compareTextLookup(Comparison& comparison);

/// The library's side, for other workloads to share.
Side ascendingInserting(const std::vector<Record>& records);
} // namespace bench
