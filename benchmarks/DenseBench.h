#pragma once

#include "benchmarks/Comparison.h"

/// Dense storage against vectors.
namespace bench
{
void compareDenseSet(Comparison& comparison);
void compareDenseSumByIterator(Comparison& comparison);
} // namespace bench
