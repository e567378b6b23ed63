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

/// Many elements in one call, against the same loops over maps.
void compareBulkInsert(Comparison& comparison);
void compareBulkLookup(Comparison& comparison);

void compareTextInsert(Comparison& comparison);
void compareTextLookup(Comparison& comparison);

/// The library's side, for other workloads to share.
Side ascendingInserting(const std::vector<Record>& records);
} // namespace bench
