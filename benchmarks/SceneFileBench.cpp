#include "benchmarks/SceneFileBench.h"

#include "benchmarks/FileReads.h"
#include "benchmarks/Streams.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/peers/RawText.h"

#include <fcntl.h>
#include <unistd.h>

#include <set>

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

constexpr std::size_t kNodes = 20'000;
constexpr std::size_t kElements = 10;

std::string nodeName(std::size_t i)
{
    return "node" + std::to_string(i);
}

/// A scene in which each of many nodes has the records.
std::shared_ptr<const SceneFile> sceneOfNodes(const std::string& extension, std::size_t nodes)
{
    constexpr std::uint64_t kSmallGeometry = 1 << 20;
    const std::vector<Record> records = makeRecords(kElements);
    const auto file = std::make_shared<const SceneFile>(extension, records, kSmallGeometry);
    const std::unique_ptr<Accessor> accessor = writerOf(*file, records);
    for (std::size_t i = 0; i < nodes; ++i)
        accessor->associations()[nodeName(i)] = associationsOf(streamOf(BlockArray(records), Storage::kMapped));
    write(*accessor);
    return file;
}

/// Edits the label of one element there and back; reads nothing but its node, or all.
Side labelEditing(const std::shared_ptr<const SceneFile>& file, const std::string& node, bool readsAll)
{
    const auto edit = [file, node, readsAll](const std::string& text) {
        const std::unique_ptr<Accessor> accessor = accessorFor(*file);
        accessor->setDurability(Accessor::kMemoryOnly);
        accessor->setUnread(Accessor::kKeep);
        const std::set<std::string> names = {node};
        std::string errors;
        if (!accessor->read(file->name(), nullptr, readsAll ? nullptr : &names, errors))
            throw WrongResult("the library does not read the file: " + errors);
        Handle record = streamIn(accessor->associations()[node]).element(kElements / 2);
        record.setPositionByMemberName("Label");
        const std::string before = record.str(0);
        record.fromStr(text, 0, errors);
        write(*accessor);
        return before;
    };
    const std::string label = makeRecords(kElements)[kElements / 2].label;
    const auto round = [edit, label](Stopwatch& watch) {
        std::string edited;
        watch.time([&] { edit(label + " or so"); });
        watch.time([&] { edited = edit(label); });
        return digestOf(std::vector<std::string>{edited, edit(label)});
    };
    return {round, digestOf(std::vector<std::string>{label + " or so", label})};
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

void compareNodeEdit(Comparison& comparison, const std::string& extension)
{
    const std::size_t nodes = comparison.scaled(kNodes);
    const auto file = sceneOfNodes(extension, nodes);
    const std::string node = nodeName(nodes / 2);
    constexpr std::size_t kEdits = 2;
    comparison.run(kEdits, labelEditing(file, node, false), labelEditing(file, node, true));
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
