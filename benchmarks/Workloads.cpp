#include "benchmarks/Workloads.h"

#include "benchmarks/CopyBench.h"
#include "benchmarks/DenseBench.h"
#include "benchmarks/HostileBench.h"
#include "benchmarks/MappedBench.h"
#include "benchmarks/MemoryBench.h"
#include "benchmarks/ScaleBench.h"
#include "benchmarks/SceneFileBench.h"
#include "benchmarks/SceneScaleBench.h"
#include "benchmarks/TagBench.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/ThreadBench.h"
#include "benchmarks/ToolBench.h"
#include "benchmarks/VectorBench.h"
#include "benchmarks/peers/LoopText.h"
#include "benchmarks/peers/Nlohmann.h"
#include "benchmarks/peers/RapidJson.h"
#include "benchmarks/peers/RawText.h"
#include "benchmarks/peers/SimdJson.h"

namespace bench
{
namespace
{
constexpr char kTime[] = "ns"; ///< for one element
constexpr char kBytes[] = "B";
constexpr char kCalls[] = "calls";

/// Short workloads get more rounds.
constexpr int kRounds = 9;
constexpr int kManyRounds = 25;
constexpr int kFewRounds = 5;
constexpr int kCounted = 1;

/// Two sizes of a hostile input.
constexpr std::size_t kMany = 1'000'000;
constexpr std::size_t kFew = kMany / 8;

/// Large scenes.
constexpr std::size_t kNodes = 100'000;
constexpr std::size_t kStructures = 1'000;
constexpr std::size_t kFiles = 10'000;

const std::vector<Workload> kWorkloads = {
    {"text/write/mapped/loop", "text written, mapped", "loop with own digits", kTime, 1.1, 1.0, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, loopWriter()); }},
    {"text/write/dense/loop", "text written, dense", "loop with own digits", kTime, 1.0, 0.9, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kDense, loopWriter()); }},
    {"text/write/mapped/rapidjson", "text written, mapped", "RapidJSON Writer, six digits", kTime, 0.74, 0.66, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, rapidJsonWriter()); }},
    {"text/write/dense/rapidjson", "text written, dense", "RapidJSON Writer, six digits", kTime, 0.66, 0.58, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kDense, rapidJsonWriter()); }},
    {"text/write/mapped/ostream", "text written, mapped", "std::ostream loop", kTime, 0.27, 0.2, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, ostreamWriter()); }},
    {"text/write/dense/ostream", "text written, dense", "std::ostream loop", kTime, 0.27, 0.2, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kDense, ostreamWriter()); }},
    {"text/write/mapped/exact", "exact text written, mapped", "to_chars loop", kTime, 1.3, 1.1, kRounds,
     [](Comparison& c) { compareExactWriting(c, Storage::kMapped); }},
    {"text/write/dense/exact", "exact text written, dense", "to_chars loop", kTime, 1.3, 1.1, kRounds,
     [](Comparison& c) { compareExactWriting(c, Storage::kDense); }},
    {"text/read/rapidjson", "text read", "RapidJSON DOM in situ and fill", kTime, 0.8, 0.7, kRounds,
     [](Comparison& c) { compareTextReading(c, rapidJsonReader()); }},
    {"text/read/simdjson/dom", "text read", "simdjson DOM and fill", kTime, 1.35, 1.15, kRounds,
     [](Comparison& c) { compareTextReading(c, simdJsonReader()); }},
    {"text/read/simdjson/ondemand", "text read", "simdjson on demand and fill", kTime, 1.75, 1.5, kRounds,
     [](Comparison& c) { compareTextReading(c, simdJsonOnDemandReader()); }},
    {"text/read/from_chars", "text read", "from_chars into a map of blocks", kTime, 1.4, 1.2, kRounds,
     [](Comparison& c) { compareTextReading(c, fromCharsReader()); }},
    {"text/write/mapped/nlohmann", "text written, mapped", "nlohmann::json dump", kTime, 0, 0, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, nlohmannWriter()); }},
    {"text/read/nlohmann", "text read", "nlohmann::json parse and fill", kTime, 0, 0, kRounds,
     [](Comparison& c) { compareTextReading(c, nlohmannReader()); }},

    {"dense/set", "dense: 1M setElement, no string set", "vector<Record>::push_back", kTime, 1.6, 1.0, kRounds,
     compareDenseSet},
    {"dense/set/strings", "dense: 1M setElement", "vector of blocks + strdup", kTime, 1.5, 1.0, kRounds,
     compareDenseSetWithStrings},
    {"dense/sum/element", "dense: sum float[3] by element(i)", "loop over vector<Record>", kTime, 3.9, 3.6, kManyRounds,
     compareDenseSumByElement},
    {"dense/sum/iterator", "dense: sum float[3] by iterator", "loop over vector<Record>", kTime, 1.0, 0.85, kManyRounds,
     compareDenseSumByIterator},
    {"dense/sum/view", "dense: sum float[3] by bulk view", "loop over the blocks", kTime, 1.1, 1.0, kManyRounds,
     compareDenseSumByView},
    {"dense/fill/view", "dense: fill by bulk view", "reserved vector<Record>", kTime, 1.5, 1.1, kManyRounds,
     compareDenseFillByView},
    {"vector/sum/openmesh", "dense float[3]: sum by bulk view", "OpenMesh property", kTime, 0, 0, kManyRounds,
     compareVectorSum},
    {"vector/fill/openmesh", "dense float[3]: fill by bulk view", "OpenMesh property", kTime, 0, 0, kManyRounds,
     compareVectorFill},
    {"vector/copy/openmesh", "dense float[3]: unique copy", "OpenMesh property", kTime, 0, 0, kManyRounds,
     compareVectorCopy},

    {"mapped/insert/shuffled", "mapped: shuffled insert", "map of blocks", kTime, 1.3, 1.0, kRounds,
     compareShuffledInsert},
    {"mapped/lookup", "mapped: shuffled lookup", "map of blocks", kTime, 1.1, 0.95, kManyRounds, compareShuffledLookup},
    {"mapped/iterate", "mapped: iterate", "map of blocks", kTime, 1.05, 0.9, kManyRounds, compareIteration},
    {"mapped/insert/ascending", "mapped: ascending insert", "map of blocks, hinted", kTime, 2.0, 1.5, kManyRounds,
     compareAscendingInsert},
    {"mapped/insert/bulk", "mapped: ascending insert in one call", "map of blocks, hinted", kTime, 0, 0, kManyRounds,
     compareBulkInsert},
    {"mapped/lookup/bulk", "mapped: shuffled lookup in one call", "map of blocks", kTime, 0, 0, kManyRounds,
     compareBulkLookup},
    {"mapped/insert/string", "mapped, string indices: insert", "map<string, block>", kTime, 1.4, 1.2, kRounds,
     compareTextInsert},
    {"mapped/lookup/string", "mapped, string indices: lookup", "map<string, block>", kTime, 1.25, 1.1, kRounds,
     compareTextLookup},
    {"memory/numeric", "mapped: bytes per element", "map of blocks", kBytes, 1.06, 1.0, kCounted, compareNumericMemory},
    {"memory/string", "mapped, string indices: bytes per element", "map<string, block>", kBytes, 1.45, 1.3, kCounted,
     compareTextMemory},
    {"memory/dense", "dense: bytes per element", "vector of blocks + strdup", kBytes, 0, 0, kCounted,
     compareDenseMemory},

    {"copy/mapped", "unique copy of 100 streams, mapped", "map of blocks + strdup", kTime, 1.05, 0.9, kRounds,
     compareMappedCopy},
    {"copy/dense", "unique copy of 100 streams, dense", "vector of blocks + strdup", kTime, 1.1, 1.0, kRounds,
     compareDenseCopy},

    {"file/ob/read", ".ob read, 1 MB of metadata", "text in memory read", kTime, 1.2, 1.05, kManyRounds,
     [](Comparison& c) { compareFileReading(c, "ob"); }},
    {"file/ob/write", ".ob write, 1 MB of metadata", "text in memory written", kTime, 1.15, 1.05, kManyRounds,
     [](Comparison& c) { compareFileWriting(c, "ob"); }},
    {"file/oa/read", ".oa read, 1 MB of metadata", "text in memory read", kTime, 1.2, 1.1, kManyRounds,
     [](Comparison& c) { compareFileReading(c, "oa"); }},
    {"file/oa/write", ".oa write, 1 MB of metadata", "text in memory written", kTime, 1.2, 1.1, kManyRounds,
     [](Comparison& c) { compareFileWriting(c, "oa"); }},
    {"file/ob/small", ".ob read, 20 nodes of 50 elements", "pread, and texts in memory read", kTime, 1.1, 1.05,
     kManyRounds, [](Comparison& c) { compareSmallScene(c, "ob"); }},
    {"file/oa/small", ".oa read, 20 nodes of 50 elements", "pread, and texts in memory read", kTime, 1.1, 1.05,
     kManyRounds, [](Comparison& c) { compareSmallScene(c, "oa"); }},
    {"file/ob/journal", ".ob write with a journal", "without a journal", kTime, 0, 0, kManyRounds,
     [](Comparison& c) { compareJournal(c, "ob"); }},
    {"file/oa/journal", ".oa write with a journal", "without a journal", kTime, 0, 0, kManyRounds,
     [](Comparison& c) { compareJournal(c, "oa"); }},
    {"file/ob/bytes", ".ob: bytes read", "pread of the metadata", kBytes, 1.05, 1.0, kCounted,
     [](Comparison& c) { compareBytesRead(c, "ob"); }},
    {"file/oa/bytes", ".oa: bytes read", "pread of the metadata", kBytes, 1.05, 1.0, kCounted,
     [](Comparison& c) { compareBytesRead(c, "oa"); }},
    {"file/ob/calls", ".ob: read calls", "pread of the metadata", kCalls, 12, 4, kCounted,
     [](Comparison& c) { compareReadCalls(c, "ob"); }},
    {"file/oa/calls", ".oa: read calls", "pread of the metadata", kCalls, 40, 10, kCounted,
     [](Comparison& c) { compareReadCalls(c, "oa"); }},
    {"file/ob/edit", ".ob: one label edited in place", "TagLib, a tag of a WAV file", kTime, 0, 0, kManyRounds,
     compareEditInPlace},

    {"file/ob/node", ".ob: one label among 20k nodes, rest kept", "all nodes read and written", kTime, 0.05, 0.05,
     kRounds, [](Comparison& c) { compareNodeEdit(c, "ob"); }},
    {"file/oa/node", ".oa: one label among 20k nodes, rest kept", "all nodes read and written", kTime, 0.15, 0.15,
     kRounds, [](Comparison& c) { compareNodeEdit(c, "oa"); }},

    {"threads/scenes", "8 scenes read on 2 threads", "one after the other", kTime, 0.58, 0.53, kManyRounds,
     compareSceneReadingOnThreads},
    {"threads/streams", "2 streams filled, written, read on 2 threads", "one after the other", kTime, 0.58, 0.53,
     kManyRounds, compareStreamsOnThreads},
    {"threads/streams/shared", "2 streams of one structure on 2 threads", "one after the other", kTime, 0, 0,
     kManyRounds, compareStreamsOfOneStructureOnThreads},
    {"threads/element", "element(i), one structure, on 2 threads", "one after the other", kTime, 0, 0, kManyRounds,
     compareElementsOfOneStructureOnThreads},

    {"tool/scan", "vumo scan, 10k .ob of 20 nodes of 50 elements", "pread, and texts in memory read", kTime, 1.5, 1.25,
     kFewRounds, compareScan},
    {"tool/ls", "vumo ls, .ob of 20k nodes", "all nodes read", kTime, 0.4, 0.2, kRounds, compareListing},
    {"tool/get", "vumo get of one label among 20k nodes", "all nodes read", kTime, 0.4, 0.2, kRounds, compareGet},

    {"scale/text/write", "text written, 1M elements", "itself, 10k", kTime, 1.3, 1.1, kRounds,
     compareTextWritingAtScale},
    {"scale/text/read", "text read, 1M elements", "itself, 10k", kTime, 1.3, 1.1, kRounds, compareTextReadingAtScale},
    {"scale/mapped/insert", "mapped: ascending insert, 1M", "itself, 10k", kTime, 1.3, 1.1, kRounds,
     compareMappedInsertAtScale},
    {"scale/dense/set", "dense: setElement, 1M", "itself, 10k", kTime, 1.3, 1.1, kRounds, compareDenseSetAtScale},
    {"scale/oa/read", ".oa read, 32 MB of metadata", "itself, 1 MB", kTime, 1.15, 1.05, kRounds,
     compareAsciiFileReadingAtScale},
    {"scale/scene/records/read", ".ob read, 1M records in one node", "itself, 100k", kTime, 1.3, 1.1, kFewRounds,
     [](Comparison& c) { compareSceneReading(c, recordsOfOneNode, kMany); }},
    {"scale/scene/records/write", ".ob write, 1M records in one node", "itself, 100k", kTime, 1.3, 1.1, kFewRounds,
     [](Comparison& c) { compareSceneWriting(c, recordsOfOneNode, kMany); }},
    {"scale/scene/records/memory", ".ob read, 1M records in one node: peak", "itself, 100k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareSceneMemory(c, recordsOfOneNode, kMany); }},
    {"scale/scene/nodes/read", ".ob read, 100k nodes of 10 records", "itself, 10k", kTime, 1.3, 1.1, kFewRounds,
     [](Comparison& c) { compareSceneReading(c, nodesOfTenRecords, kNodes); }},
    {"scale/scene/nodes/write", ".ob write, 100k nodes of 10 records", "itself, 10k", kTime, 1.3, 1.1, kFewRounds,
     [](Comparison& c) { compareSceneWriting(c, nodesOfTenRecords, kNodes); }},
    {"scale/scene/nodes/memory", ".ob read, 100k nodes of 10 records: peak", "itself, 10k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareSceneMemory(c, nodesOfTenRecords, kNodes); }},
    {"scale/scene/structures/read", ".ob read, 1,000 structures", "itself, 100", kTime, 1.3, 1.1, kRounds,
     [](Comparison& c) { compareSceneReading(c, structuresOfTenRecords, kStructures); }},
    {"scale/scene/structures/write", ".ob write, 1,000 structures", "itself, 100", kTime, 1.3, 1.1, kRounds,
     [](Comparison& c) { compareSceneWriting(c, structuresOfTenRecords, kStructures); }},
    {"scale/scene/structures/memory", ".ob read, 1,000 structures: peak", "itself, 100", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareSceneMemory(c, structuresOfTenRecords, kStructures); }},
    {"scale/scene/files/read", "10k .ob files of 10 records read", "itself, 1k", kTime, 1.3, 1.1, kFewRounds,
     [](Comparison& c) { compareFilesReading(c, kFiles); }},
    {"scale/scene/files/memory", "10k .ob files of 10 records read: peak", "itself, 1k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareFilesMemory(c, kFiles); }},
    {"scale/ob/journal", ".ob write with a journal, 4 GiB scene", "itself, 1 MiB scene", kTime, 0, 0, kManyRounds,
     compareJournalAtScale},

    {"hostile/oa/statement", "one .oa statement of 64 MB", "itself, 8 MB", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, longStatement, 64, 8); }},
    {"hostile/oa/statement/memory", "one .oa statement of 64 MB: peak", "itself, 8 MB", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, longStatement, 64, 8); }},
    {"hostile/oa/above", "1M lines above the .oa metadata", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, linesAboveStatement, kMany, kFew); }},
    {"hostile/oa/above/memory", "1M lines above the .oa metadata: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, linesAboveStatement, kMany, kFew); }},
    {"hostile/oa/inside", "1M lines in a statement", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, linesInStatement, kMany, kFew); }},
    {"hostile/oa/inside/memory", "1M lines in a statement: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, linesInStatement, kMany, kFew); }},
    {"hostile/oa/statements", "1M statements", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, manyStatements, kMany, kFew); }},
    {"hostile/oa/statements/memory", "1M statements: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, manyStatements, kMany, kFew); }},
    {"hostile/ob/host", "1M empty host chunks", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, manyHostChunks, kMany, kFew); }},
    {"hostile/ob/host/memory", "1M empty host chunks: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, manyHostChunks, kMany, kFew); }},
    {"hostile/ob/structures", "1M structure chunks", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, manyStructures, kMany, kFew); }},
    {"hostile/ob/structures/memory", "1M structure chunks: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, manyStructures, kMany, kFew); }},
    {"hostile/ob/nodes", "1M metadata chunks", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, manyNodes, kMany, kFew); }},
    {"hostile/ob/nodes/memory", "1M metadata chunks: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, manyNodes, kMany, kFew); }},
    {"hostile/ob/hash", "64k structures of one hash", "itself, 8k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, structuresOfOneHash, 65'536, 8'192); }},
    {"hostile/structure/hash", "64k members of one hash", "itself, 8k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, membersOfOneHash, 65'536, 8'192); }},
    {"hostile/structure", "structure text of 1M faulty lines", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, linesOfStructure, kMany, kFew); }},
    {"hostile/structure/memory", "structure text of 1M faulty lines: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, linesOfStructure, kMany, kFew); }},
    {"hostile/channel", "channel text of 1M faulty lines", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, linesOfChannel, kMany, kFew); }},
    {"hostile/channel/memory", "channel text of 1M faulty lines: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, linesOfChannel, kMany, kFew); }},
    {"hostile/stream", "stream text of 1M lines", "itself, 125k", kTime, 2.0, 1.3, kFewRounds,
     [](Comparison& c) { compareHostileTime(c, linesOfStream, kMany, kFew); }},
    {"hostile/stream/memory", "stream text of 1M lines: peak", "itself, 125k", kBytes, 1.1, 1.0, kCounted,
     [](Comparison& c) { compareHostileMemory(c, linesOfStream, kMany, kFew); }},
};
} // namespace

const std::vector<Workload>& workloads()
{
    return kWorkloads;
}
} // namespace bench
