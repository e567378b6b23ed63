#pragma once

#include "benchmarks/Comparison.h"

/// A unique copy of associations with 10 channels of 10 streams each.
namespace bench
{
/// Mapped streams against maps of records.
void compareMappedCopy(Comparison& comparison);

/// Dense streams against arrays of blocks whose labels are copied by strdup.
void compareDenseCopy(Comparison& comparison);
} // namespace bench
