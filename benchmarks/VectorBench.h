#pragma once

#include "benchmarks/Comparison.h"

/// One float[3] for each of a mesh's vertices: a dense stream, used by `MemberView`, against a property of a mesh of
/// OpenMesh.
namespace bench
{
void compareVectorSum(Comparison& comparison);
void compareVectorFill(Comparison& comparison);
void compareVectorCopy(Comparison& comparison);
} // namespace bench
