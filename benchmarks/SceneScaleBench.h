#pragma once

#include "benchmarks/Comparison.h"

#include <cstddef>

/// Generated binary scenes that are large in one way or another: what a part costs among many against what it costs
/// among a tenth of them. The "peer" is the library itself.
namespace bench
{
/// How much metadata a scene has: each node has a stream for each structure, and each stream the same records.
struct SceneShape
{
    std::size_t nodes;
    std::size_t structures;
    std::size_t records;
};

/// The shape of a scene with that many parts.
using SceneKind = SceneShape (*)(std::size_t parts);

SceneShape recordsOfOneNode(std::size_t records);
SceneShape nodesOfTenRecords(std::size_t nodes);
SceneShape structuresOfTenRecords(std::size_t structures);

/// The time of a read or of a write without a journal, and the memory at the peak of a read, for each part.
void compareSceneReading(Comparison& comparison, SceneKind kind, std::size_t parts);
void compareSceneWriting(Comparison& comparison, SceneKind kind, std::size_t parts);
void compareSceneMemory(Comparison& comparison, SceneKind kind, std::size_t parts);

/// The same for small scenes of ten records, each in a file of its own, that are read one after the other.
void compareFilesReading(Comparison& comparison, std::size_t files);
void compareFilesMemory(Comparison& comparison, std::size_t files);
} // namespace bench
