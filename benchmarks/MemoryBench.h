#pragma once

#include "benchmarks/Comparison.h"

/// Bytes that an element takes, all that the C library's allocator spends on it included.
namespace bench
{
void compareNumericMemory(Comparison& comparison);
void compareTextMemory(Comparison& comparison);
void compareDenseMemory(Comparison& comparison);
} // namespace bench
