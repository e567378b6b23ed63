#include "benchmarks/SceneFileBench.h"

#include "benchmarks/FileReads.h"
#include "benchmarks/Streams.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/peers/RawText.h"

#include <fcntl.h>
#include <unistd.h>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kMetadataSize = 1 << 20;

FileReads readsOfLibrary(const SceneFile& file, const std::vector<Record>& expected)
{
    const std::unique_ptr<Accessor> accessor = accessorFor(file);
    const FileReads reads = readsDuring([&] { read(*accessor, file); });
    if (digestOf(streamIn(*accessor)) != digestOf(expected))
        throw WrongResult("the library reads other records");
    return reads;
}

FileReads readsOfPread(const SceneFile& file)
{
    std::string bytes(file.metadataSize(), '\0');
    const int descriptor = open(file.name().c_str(), O_RDONLY);
    const off_t end = lseek(descriptor, 0, SEEK_END);
    const FileReads reads = readsDuring([&] {
        if (pread(descriptor, bytes.data(), bytes.size(), end - static_cast<off_t>(bytes.size())) < 0)
            throw WrongResult("cannot read " + file.name());
    });
    close(descriptor);
    return reads;
}
} // namespace

std::vector<Record> recordsOfTextSize(std::size_t bytes)
{
    constexpr std::size_t kSample = 1000;
    const std::size_t sampleSize = rawText(makeRecords(kSample)).size();
    return makeRecords(bytes * kSample / sampleSize);
}

Side fileReading(const std::shared_ptr<const SceneFile>& file, const std::vector<Record>& expected)
{
    const auto round = [file](Stopwatch& watch) {
        const std::unique_ptr<Accessor> accessor = accessorFor(*file);
        watch.time([&] { read(*accessor, *file); });
        return digestOf(streamIn(*accessor));
    };
    return {round, digestOf(expected)};
}

Side fileWriting(const std::shared_ptr<const SceneFile>& file, const std::vector<Record>& records,
                 Accessor::eDurability durability)
{
    std::vector<Record> others(records.rbegin(), records.rend());
    const std::shared_ptr<const Accessor> spoiler = writerOf(*file, others);
    const std::shared_ptr<Accessor> writer = writerOf(*file, records);
    writer->setDurability(durability);
    const auto round = [file, spoiler, writer](Stopwatch& watch) {
        write(*spoiler); // what is there already would not be written
        watch.time([&] { write(*writer); });
        const std::unique_ptr<Accessor> reader = accessorFor(*file);
        read(*reader, *file);
        return digestOf(streamIn(*reader));
    };
    return {round, digestOf(records)};
}

void compareFileReading(Comparison& comparison, const std::string& extension)
{
    const std::vector<Record> records = recordsOfTextSize(comparison.scaled(kMetadataSize));
    const auto file = std::make_shared<const SceneFile>(extension, records);
    comparison.run(records.size(), fileReading(file, records), rawReading(rawText(records), records));
}

void compareFileWriting(Comparison& comparison, const std::string& extension)
{
    const std::vector<Record> records = recordsOfTextSize(comparison.scaled(kMetadataSize));
    const auto file = std::make_shared<const SceneFile>(extension, records);
    const Associations metadata = associationsOf(streamOf(BlockArray(records), Storage::kMapped));
    comparison.run(records.size(), fileWriting(file, records, Accessor::kMemoryOnly),
                   rawWriting(metadata, rawText(records)));
}

void compareJournal(Comparison& comparison, const std::string& extension)
{
    const std::vector<Record> records = recordsOfTextSize(comparison.scaled(kMetadataSize));
    const auto file = std::make_shared<const SceneFile>(extension, records);
    comparison.run(records.size(), fileWriting(file, records, Accessor::kJournal),
                   fileWriting(file, records, Accessor::kMemoryOnly));
}

void compareJournalAtScale(Comparison& comparison)
{
    constexpr std::uint64_t kSmallGeometry = 1 << 20;
    const std::vector<Record> records = recordsOfTextSize(comparison.scaled(kMetadataSize));
    const auto large = std::make_shared<const SceneFile>("ob", records);
    const auto small = std::make_shared<const SceneFile>("ob", records, kSmallGeometry);
    comparison.run(records.size(), fileWriting(large, records, Accessor::kJournal),
                   fileWriting(small, records, Accessor::kJournal));
}

void compareBytesRead(Comparison& comparison, const std::string& extension)
{
    const std::vector<Record> records = recordsOfTextSize(kMetadataSize);
    const SceneFile file(extension, records);
    comparison.count(static_cast<double>(readsOfLibrary(file, records).bytes),
                     static_cast<double>(readsOfPread(file).bytes));
}

void compareReadCalls(Comparison& comparison, const std::string& extension)
{
    const std::vector<Record> records = recordsOfTextSize(kMetadataSize);
    const SceneFile file(extension, records);
    comparison.count(static_cast<double>(readsOfLibrary(file, records).calls),
                     static_cast<double>(readsOfPread(file).calls));
}
} // namespace bench
