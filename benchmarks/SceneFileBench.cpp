#include "benchmarks/SceneFileBench.h"

#include "benchmarks/FileReads.h"
#include "benchmarks/Streams.h"
#include "benchmarks/TextBench.h"
#include "benchmarks/peers/RawText.h"

#include <fcntl.h>
#include <unistd.h>

#include <set>
#include <sstream>

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

/// A large scene and a small one.
constexpr std::size_t kNodes = 20'000;
constexpr std::size_t kElements = 10;
constexpr std::size_t kFewNodes = 20;
constexpr std::size_t kFewElements = 50;

std::string nodeName(std::size_t i)
{
    return "node" + std::to_string(i);
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

/// As many bytes as the metadata have from the end of the file, into the text that has room for them.
void readTail(int descriptor, std::string& bytes)
{
    const off_t end = lseek(descriptor, 0, SEEK_END);
    if (pread(descriptor, bytes.data(), bytes.size(), end - static_cast<off_t>(bytes.size())) < 0)
        throw WrongResult("cannot read a scene");
}

FileReads readsOfPread(const SceneFile& file)
{
    std::string bytes(file.metadataSize(), '\0');
    const int descriptor = open(file.name().c_str(), O_RDONLY);
    const FileReads reads = readsDuring([&] { readTail(descriptor, bytes); });
    close(descriptor);
    return reads;
}

std::uint64_t digestOfNodes(const std::vector<std::uint64_t>& nodes)
{
    Digest digest;
    for (const std::uint64_t node : nodes)
        digest.add(node);
    return digest.sum();
}

std::uint64_t digestOfNodes(std::size_t nodes, const std::vector<Record>& records)
{
    return digestOfNodes(std::vector<std::uint64_t>(nodes, digestOf(records)));
}
} // namespace

std::vector<Record> recordsOfTextSize(std::size_t bytes)
{
    constexpr std::size_t kSample = 1000;
    const std::size_t sampleSize = rawText(makeRecords(kSample)).size();
    return makeRecords(bytes * kSample / sampleSize);
}

std::shared_ptr<const SceneFile> sceneOfNodes(const std::string& extension, std::size_t nodes,
                                              const std::vector<Record>& records)
{
    constexpr std::uint64_t kSmallGeometry = 1 << 20;
    const auto file = std::make_shared<const SceneFile>(extension, records, kSmallGeometry);
    const std::unique_ptr<Accessor> accessor = writerOf(*file, records);
    accessor->associations().clear();
    for (std::size_t i = 0; i < nodes; ++i)
        accessor->associations()[nodeName(i)] = associationsOf(streamOf(BlockArray(records), Storage::kMapped));
    write(*accessor);
    return file;
}

Side nodesReading(const std::shared_ptr<const SceneFile>& file, std::size_t nodes, const std::vector<Record>& records)
{
    const auto round = [file](Stopwatch& watch) {
        const std::unique_ptr<Accessor> accessor = accessorFor(*file);
        watch.time([&] { read(*accessor, *file); });
        std::vector<std::uint64_t> digests;
        for (const auto& [name, associations] : accessor->associations())
            digests.push_back(digestOf(streamIn(associations)));
        return digestOfNodes(digests);
    };
    return {round, digestOfNodes(nodes, records)};
}

Side partsReading(const std::shared_ptr<const SceneFile>& file, std::size_t nodes, const std::vector<Record>& records,
                  bool isFreed)
{
    // Made once: allocations of this size make the allocator tidy up, which would then be done before the watch runs.
    const auto texts = std::make_shared<std::vector<std::istringstream>>();
    const std::string text = rawText(records);
    texts->emplace_back(recordStructureText());
    for (std::size_t i = 0; i < nodes; ++i)
        texts->emplace_back(text);
    const auto round = [file, texts, isFreed](Stopwatch& watch) {
        for (std::istringstream& in : *texts)
        {
            in.clear();
            in.seekg(0);
        }
        std::vector<std::unique_ptr<Associations>> read;
        watch.time([&] {
            const int descriptor = open(file->name().c_str(), O_RDONLY);
            std::string bytes(file->metadataSize(), '\0');
            readTail(descriptor, bytes);
            close(descriptor);
            readRawStructure(texts->front());
            for (std::size_t i = 1; i < texts->size(); ++i)
                read.push_back(readRaw((*texts)[i]));
        });
        std::vector<std::uint64_t> digests;
        for (const std::unique_ptr<Associations>& associations : read)
            digests.push_back(digestOf(streamIn(*associations)));
        if (isFreed)
            watch.time([&] { read.clear(); });
        return digestOfNodes(digests);
    };
    return {round, digestOfNodes(nodes, records)};
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
    const auto file = sceneOfNodes(extension, nodes, makeRecords(kElements));
    const std::string node = nodeName(nodes / 2);
    constexpr std::size_t kEdits = 2;
    comparison.run(kEdits, labelEditing(file, node, false), labelEditing(file, node, true));
}

void compareSmallScene(Comparison& comparison, const std::string& extension)
{
    constexpr unsigned int kPasses = 20;
    const std::vector<Record> records = makeRecords(kFewElements);
    const auto file = sceneOfNodes(extension, kFewNodes, records);
    comparison.run(kFewNodes * kFewElements * kPasses, repeated(nodesReading(file, kFewNodes, records), kPasses),
                   repeated(partsReading(file, kFewNodes, records), kPasses));
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
