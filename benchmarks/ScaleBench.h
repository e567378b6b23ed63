#pragma once

#include "benchmarks/Comparison.h"

/// What an element costs among many against what it costs among few: the "peer" is the library itself.
namespace bench
{
void compareTextWritingAtScale(Comparison& comparison);
void compareTextReadingAtScale(Comparison& comparison);
void compareMappedInsertAtScale(Comparison& comparison);
void compareDenseSetAtScale(Comparison& comparison);
void compareAsciiFileReadingAtScale(Comparison& comparison);
} // namespace bench
