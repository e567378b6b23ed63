#pragma once

#include "benchmarks/Comparison.h"

/// Work on two threads, each on a processor of its own, against the same work one after the other: the "peer" is the
/// library itself. Time by the clock, in memory that was used before.
namespace bench
{
/// Scenes of both kinds, each read by an accessor of its own.
void compareSceneReadingOnThreads(Comparison& comparison);

/// Streams that are filled, written and read as text, with structures of their own or one that they share.
void compareStreamsOnThreads(Comparison& comparison);
void compareStreamsOfOneStructureOnThreads(Comparison& comparison);

/// What counting in one structure costs, where hardly anything else is done.
void compareElementsOfOneStructureOnThreads(Comparison& comparison);
} // namespace bench
