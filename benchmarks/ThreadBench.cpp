#include "benchmarks/ThreadBench.h"

#include "benchmarks/Processors.h"
#include "benchmarks/SceneFile.h"
#include "benchmarks/SceneFileBench.h"
#include "benchmarks/Streams.h"
#include "vumo/foundation/Ref.h"

#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kThreads = 2;

/// Gives a digest of its results.
using Job = std::function<std::uint64_t()>;

/// Does the jobs on so many threads, which share them out among themselves.
Side jobsOn(std::size_t threadCount, const std::vector<Job>& jobs, std::uint64_t expected)
{
    const auto round = [threadCount, jobs](Stopwatch& watch) {
        std::vector<std::uint64_t> results(jobs.size());
        const auto doShare = [&](std::size_t first) {
            const std::vector<int>& processors = allowedProcessors();
            pinTo(processors[first % processors.size()]);
            for (std::size_t i = first; i < jobs.size(); i += threadCount)
                results[i] = jobs[i]();
        };
        watch.timeByClock([&] {
            std::vector<std::thread> threads;
            for (std::size_t i = 0; i < threadCount; ++i)
                threads.emplace_back(doShare, i);
            for (std::thread& thread : threads)
                thread.join();
        });
        Digest digest;
        for (const std::uint64_t result : results)
            digest.add(result);
        return digest.sum();
    };
    return {round, expected};
}

/// All jobs have the same results.
void compareOnThreads(Comparison& comparison, const std::vector<Job>& jobs, std::size_t elementsOfJob,
                      std::uint64_t expectedOfJob)
{
    Digest expected;
    for (std::size_t i = 0; i < jobs.size(); ++i)
        expected.add(expectedOfJob);
    comparison.run(jobs.size() * elementsOfJob, jobsOn(kThreads, jobs, expected.sum()),
                   jobsOn(1, jobs, expected.sum()));
}

/// The structure of the records under a name of its own, registered for the life of the process.
const Structure& namedStructure(const std::string& name)
{
    const vumo::Ref<Structure> structure(new Structure(recordStructure()));
    structure->setName(name.c_str());
    Structure::registerStructure(*structure);
    return *structure;
}

/// Fills a stream, and gives what is read of its text.
std::uint64_t fillWriteAndRead(const Structure& structure, const BlockArray& blocks)
{
    Stream stream(structure, "points");
    Handle handle(structure, nullptr);
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        handle.pointToData(blocks.data(i), false);
        stream.setElement(static_cast<unsigned int>(i), handle);
    }
    std::stringstream text;
    writeRaw(associationsOf(stream), text);
    return digestOf(streamIn(*readRaw(text)));
}

void compareStreams(Comparison& comparison, const std::vector<const Structure*>& structures)
{
    constexpr std::size_t kElements = 50'000;
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const BlockArray blocks(records);
    std::vector<Job> jobs;
    for (const Structure* const structure : structures)
        jobs.emplace_back([structure, &blocks] { return fillWriteAndRead(*structure, blocks); });
    compareOnThreads(comparison, jobs, records.size(), digestOf(records));
}
} // namespace

void compareSceneReadingOnThreads(Comparison& comparison)
{
    constexpr std::size_t kScenes = 8;
    constexpr std::size_t kTextSize = 1 << 20;
    constexpr std::uint64_t kSmallGeometry = 1 << 20;
    const std::vector<Record> records = recordsOfTextSize(comparison.scaled(kTextSize));
    std::vector<Job> jobs;
    for (std::size_t i = 0; i < kScenes; ++i)
    {
        const char* const extension = i < kScenes / 2 ? "oa" : "ob"; // as many for each thread
        const auto file = std::make_shared<const SceneFile>(extension, records, kSmallGeometry);
        jobs.emplace_back([file] {
            const std::unique_ptr<Accessor> accessor = accessorFor(*file);
            read(*accessor, *file);
            return digestOf(streamIn(*accessor));
        });
    }
    compareOnThreads(comparison, jobs, records.size(), digestOf(records));
}

void compareStreamsOnThreads(Comparison& comparison)
{
    compareStreams(comparison, {&namedStructure("First"), &namedStructure("Second")});
}

void compareStreamsOfOneStructureOnThreads(Comparison& comparison)
{
    compareStreams(comparison, {&recordStructure(), &recordStructure()});
}

void compareElementsOfOneStructureOnThreads(Comparison& comparison)
{
    constexpr std::size_t kElements = 1'000'000;
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const auto count = static_cast<unsigned int>(records.size());
    const BlockArray blocks(records);
    std::vector<Job> jobs;
    for (std::size_t i = 0; i < kThreads; ++i)
    {
        jobs.emplace_back([count, stream = streamOf(blocks, Storage::kDense)] {
            Digest digest;
            for (unsigned int n = 0; n < count; ++n)
                digest.add(static_cast<std::uint64_t>(stream.element(n).get<std::int32_t>().value_or(0)));
            return digest.sum();
        });
    }
    Digest expected;
    for (const Record& record : records)
        expected.add(static_cast<std::uint64_t>(record.id));
    compareOnThreads(comparison, jobs, count, expected.sum());
}
} // namespace bench
