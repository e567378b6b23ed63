#pragma once

#include "benchmarks/Comparison.h"
#include "benchmarks/Records.h"

#include <vector>

/// Dense storage against vectors.
namespace bench
{
/// Records without labels, against vectors of such records.
void compareDenseSet(Comparison& comparison);

/// With labels, against vectors of blocks with labels of their own.
void compareDenseSetWithStrings(Comparison& comparison);

void compareDenseSumByElement(Comparison& comparison);
void compareDenseSumByIterator(Comparison& comparison);

/// By `MemberView`, against a loop over the blocks themselves.
void compareDenseSumByView(Comparison& comparison);

/// Sets the range, then one member by `MemberView`; against a vector that was reserved.
void compareDenseFillByView(Comparison& comparison);

/// The library's side, for other workloads to share.
Side denseSetting(const std::vector<Record>& records);
} // namespace bench
