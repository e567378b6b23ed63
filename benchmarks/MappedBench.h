#pragma once

#include "benchmarks/Comparison.h"

/// Mapped storage against maps.
namespace bench
{
void compareShuffledInsert(Comparison& comparison);
void compareShuffledLookup(Comparison& comparison);
void compareIteration(Comparison& comparison);
void compareAscendingInsert(Comparison& comparison);
void compareTextInsert(Comparison& comparison);
void compareTextLookup(Comparison& comparison);
} // namespace bench
