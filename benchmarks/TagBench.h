#pragma once

#include "benchmarks/Comparison.h"

/// Editing what little a large file carries at its end: ten labelled records of a binary scene against ten tags of a
/// sound file.
namespace bench
{
/// Opens the file, changes one of the texts, saves it in place.
void compareEditInPlace(Comparison& comparison);
} // namespace bench
