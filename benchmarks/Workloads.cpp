#include "benchmarks/Workloads.h"

#include "benchmarks/DenseBench.h"
#include "benchmarks/MappedBench.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/peers/RapidJson.h"
#include "benchmarks/peers/RawText.h"
#include "benchmarks/peers/SimdJson.h"

namespace bench
{
namespace
{
constexpr char kTime[] = "ns";

/// Short workloads get more rounds.
constexpr int kRounds = 9;
constexpr int kManyRounds = 25;

const std::vector<Workload> kWorkloads = {
    {"text/write/mapped/rapidjson", "text written, mapped", "RapidJSON Writer", kTime, 0.95, 0.7, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, rapidJsonWriter()); }},
    {"text/write/dense/rapidjson", "text written, dense", "RapidJSON Writer", kTime, 0.8, 0.6, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kDense, rapidJsonWriter()); }},
    {"text/write/mapped/ostream", "text written, mapped", "std::ostream loop", kTime, 0.27, 0.2, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kMapped, ostreamWriter()); }},
    {"text/write/dense/ostream", "text written, dense", "std::ostream loop", kTime, 0.27, 0.2, kRounds,
     [](Comparison& c) { compareTextWriting(c, Storage::kDense, ostreamWriter()); }},
    {"text/read/rapidjson", "text read", "RapidJSON DOM and fill", kTime, 0.8, 0.6, kRounds,
     [](Comparison& c) { compareTextReading(c, rapidJsonReader()); }},
    {"text/read/simdjson", "text read", "simdjson DOM and fill", kTime, 1.35, 1.0, kRounds,
     [](Comparison& c) { compareTextReading(c, simdJsonReader()); }},
    {"text/read/from_chars", "text read", "from_chars into a map of blocks", kTime, 1.4, 1.1, kRounds,
     [](Comparison& c) { compareTextReading(c, fromCharsReader()); }},

    {"dense/set", "dense: 1M setElement", "vector<Record>::push_back", kTime, 1.5, 1.0, kRounds, compareDenseSet},
    {"dense/sum/iterator", "dense: sum float[3] by iterator", "loop over vector<Record>", kTime, 1.0, 0.75, kManyRounds,
     compareDenseSumByIterator},

    {"mapped/insert/shuffled", "mapped: shuffled insert", "map of blocks", kTime, 1.3, 1.0, kRounds,
     compareShuffledInsert},
    {"mapped/lookup", "mapped: shuffled lookup", "map of blocks", kTime, 1.2, 1.0, kManyRounds, compareShuffledLookup},
    {"mapped/iterate", "mapped: iterate", "map of blocks", kTime, 1.05, 0.9, kManyRounds, compareIteration},
    {"mapped/insert/ascending", "mapped: ascending insert", "map of blocks, hinted", kTime, 2.0, 1.5, kManyRounds,
     compareAscendingInsert},
    {"mapped/insert/string", "mapped, string indices: insert", "map<string, Record>", kTime, 1.7, 1.2, kRounds,
     compareTextInsert},
    {"mapped/lookup/string", "mapped, string indices: lookup", "map<string, Record>", kTime, 1.55, 1.1, kRounds,
     compareTextLookup},
};
} // namespace

const std::vector<Workload>& workloads()
{
    return kWorkloads;
}
} // namespace bench
