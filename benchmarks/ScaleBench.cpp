#include "benchmarks/ScaleBench.h"

#include "benchmarks/DenseBench.h"
#include "benchmarks/MappedBench.h"
#include "benchmarks/SceneFileBench.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/peers/RawText.h"

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kFew = 10'000;
constexpr std::size_t kMany = 1'000'000;
constexpr std::size_t kSmallFile = std::size_t(1) << 20;
constexpr std::size_t kLargeFile = std::size_t(32) << 20;

/// How often a round treats the few elements: long enough for the clock.
constexpr unsigned int kPasses = 20;

/// `makeSide` makes the library's side of records.
template <class MakeSide>
void compareAtScale(Comparison& comparison, const std::vector<Record>& many, const std::vector<Record>& few,
                    MakeSide makeSide)
{
    comparison.run(many.size(), makeSide(many), few.size() * kPasses, repeated(makeSide(few), kPasses));
}

template <class MakeSide>
void compareAtScale(Comparison& comparison, MakeSide makeSide)
{
    compareAtScale(comparison, makeRecords(comparison.scaled(kMany)), makeRecords(comparison.scaled(kFew)), makeSide);
}
} // namespace

void compareTextWritingAtScale(Comparison& comparison)
{
    compareAtScale(comparison, [](const std::vector<Record>& records) {
        return rawWriting(associationsOf(streamOf(BlockArray(records), Storage::kMapped)), rawText(records));
    });
}

void compareTextReadingAtScale(Comparison& comparison)
{
    compareAtScale(comparison,
                   [](const std::vector<Record>& records) { return rawReading(rawText(records), records); });
}

void compareMappedInsertAtScale(Comparison& comparison)
{
    compareAtScale(comparison, ascendingInserting);
}

void compareDenseSetAtScale(Comparison& comparison)
{
    compareAtScale(comparison, denseSetting);
}

void compareAsciiFileReadingAtScale(Comparison& comparison)
{
    compareAtScale(comparison, recordsOfTextSize(comparison.scaled(kLargeFile)),
                   recordsOfTextSize(comparison.scaled(kSmallFile)), [](const std::vector<Record>& records) {
                       return fileReading(std::make_shared<const SceneFile>("oa", records), records);
                   });
}
} // namespace bench
