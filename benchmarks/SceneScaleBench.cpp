#include "benchmarks/SceneScaleBench.h"

#include "benchmarks/PeakMemory.h"
#include "benchmarks/SceneFile.h"
#include "benchmarks/Streams.h"
#include "vumo/foundation/Ref.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kTen = 10; // records of a small stream, and how many times as large the large scenes are

std::uint64_t repeatedDigest(std::size_t count, std::uint64_t digest)
{
    Digest result;
    for (std::size_t i = 0; i < count; ++i)
        result.add(digest);
    return result.sum();
}

std::uint64_t digestOfAll(const Accessor& accessor)
{
    Digest result;
    for (const auto& [node, associations] : accessor.associations())
    {
        for (const Channel& channel : associations)
        {
            for (const Stream* const stream : channel)
                result.add(digestOf(*stream));
        }
    }
    return result.sum();
}

vumo::Ref<Structure> makeStructure(const std::string& name)
{
    return Structure::make(name.c_str(), {{Member::kInt32, 1, "ID"},
                                          {Member::kFloat, 3, "Origin"},
                                          {Member::kString, 1, "Label"},
                                          {Member::kBoolean, 1, "Flag"},
                                          {Member::kDouble, 1, "Weight"}});
}

/// A scene file of a shape, and two accessors that write it: with all of its metadata and with none.
struct ShapedScene
{
    explicit ShapedScene(const SceneShape& shape)
        : file("ob", makeRecords(1), 0),
          full(writerOf(file, makeRecords(1))),
          bare(writerOf(file, makeRecords(1)))
    {
        const std::vector<Record> records = makeRecords(shape.records);
        const BlockArray blocks(records);
        Associations metadata;
        for (std::size_t i = 0; i < shape.structures; ++i)
            metadata.channel("vertex").setDataStream(makeStream(blocks, "points" + std::to_string(i)));
        full->associations().clear();
        for (std::size_t i = 0; i < shape.nodes; ++i)
        {
            Associations& node = full->associations()["node" + std::to_string(i)];
            node = metadata;
            node.makeUnique();
        }
        bare->associations().clear();
        for (Accessor* const accessor : {full.get(), bare.get()})
            accessor->setDurability(Accessor::kMemoryOnly);
        write(*full);
        digest = repeatedDigest(shape.nodes * shape.structures, digestOf(records));
    }

    static Stream makeStream(const BlockArray& blocks, const std::string& name)
    {
        const vumo::Ref<Structure> structure = makeStructure("Record_" + name);
        Stream stream(*structure, name);
        Handle handle(*structure, nullptr);
        for (std::size_t i = 0; i < blocks.size(); ++i)
        {
            handle.pointToData(blocks.data(i), false);
            stream.setElement(static_cast<unsigned int>(i), handle);
        }
        return stream;
    }

    SceneFile file;
    std::unique_ptr<Accessor> full;
    std::unique_ptr<Accessor> bare;
    std::uint64_t digest;
};

Side sceneReading(const SceneShape& shape)
{
    const auto scene = std::make_shared<const ShapedScene>(shape);
    const auto round = [scene](Stopwatch& watch) {
        const std::unique_ptr<Accessor> accessor = accessorFor(scene->file);
        watch.time([&] { read(*accessor, scene->file); });
        return digestOfAll(*accessor);
    };
    return {round, scene->digest};
}

Side sceneWriting(const SceneShape& shape)
{
    const auto scene = std::make_shared<const ShapedScene>(shape);
    const auto round = [scene](Stopwatch& watch) {
        write(*scene->bare);
        watch.time([&] { write(*scene->full); });
        const std::unique_ptr<Accessor> accessor = accessorFor(scene->file);
        read(*accessor, scene->file);
        return digestOfAll(*accessor);
    };
    return {round, scene->digest};
}

double memoryOfRead(const SceneShape& shape)
{
    const ShapedScene scene(shape);
    return static_cast<double>(peakMemoryOf([&] {
        const std::unique_ptr<Accessor> accessor = accessorFor(scene.file);
        read(*accessor, scene.file);
    }));
}

/// A directory with small scenes, removed with the object.
class SceneFolder
{
public:
    explicit SceneFolder(std::size_t files) : mFolder("scenes"), mRecords(makeRecords(kTen)), mFiles(files)
    {
        const SceneFile original("ob", mRecords, 0);
        std::filesystem::create_directory(mFolder.name());
        for (std::size_t i = 0; i < mFiles; ++i)
            std::filesystem::copy_file(original.name(), nameOf(i));
    }
    SceneFolder(const SceneFolder&) = delete;
    SceneFolder& operator=(const SceneFolder&) = delete;
    ~SceneFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mFolder.name(), ignored);
    }

    std::uint64_t expected() const { return repeatedDigest(mFiles, digestOf(mRecords)); }

    std::uint64_t readAll(Stopwatch& watch) const
    {
        Digest result;
        for (std::size_t i = 0; i < mFiles; ++i)
        {
            std::unique_ptr<Accessor> accessor;
            std::string errors;
            watch.time([&] { accessor = Accessor::readFile(nameOf(i), errors); });
            if (!accessor)
                throw WrongResult("the library does not read the file: " + errors);
            result.add(digestOf(streamIn(*accessor)));
        }
        return result.sum();
    }

private:
    std::string nameOf(std::size_t i) const { return mFolder.name() + "/" + std::to_string(i) + ".ob"; }

    const ScratchFile mFolder;
    const std::vector<Record> mRecords;
    const std::size_t mFiles;
};

Side filesReading(std::size_t files)
{
    const auto folder = std::make_shared<const SceneFolder>(files);
    return {[folder](Stopwatch& watch) { return folder->readAll(watch); }, folder->expected()};
}

double memoryOfFiles(std::size_t files)
{
    const SceneFolder folder(files);
    return static_cast<double>(peakMemoryOf([&] {
        Stopwatch unused;
        folder.readAll(unused);
    }));
}

std::size_t fewOf(std::size_t many)
{
    return std::max<std::size_t>(many / kTen, 1);
}

void compareParts(Comparison& comparison, std::size_t many, const Side& large, const Side& small)
{
    comparison.run(many, large, fewOf(many) * kTen, repeated(small, kTen));
}

void compareMemory(Comparison& comparison, std::size_t many, double large, double small)
{
    comparison.count(large / static_cast<double>(many), small / static_cast<double>(fewOf(many)));
}
} // namespace

SceneShape recordsOfOneNode(std::size_t records)
{
    return {1, 1, records};
}

SceneShape nodesOfTenRecords(std::size_t nodes)
{
    return {nodes, 1, kTen};
}

SceneShape structuresOfTenRecords(std::size_t structures)
{
    return {1, structures, kTen};
}

void compareSceneReading(Comparison& comparison, SceneKind kind, std::size_t parts)
{
    const std::size_t many = comparison.scaled(parts);
    compareParts(comparison, many, sceneReading(kind(many)), sceneReading(kind(fewOf(many))));
}

void compareSceneWriting(Comparison& comparison, SceneKind kind, std::size_t parts)
{
    const std::size_t many = comparison.scaled(parts);
    compareParts(comparison, many, sceneWriting(kind(many)), sceneWriting(kind(fewOf(many))));
}

void compareSceneMemory(Comparison& comparison, SceneKind kind, std::size_t parts)
{
    const std::size_t many = comparison.scaled(parts);
    compareMemory(comparison, many, memoryOfRead(kind(many)), memoryOfRead(kind(fewOf(many))));
}

void compareFilesReading(Comparison& comparison, std::size_t files)
{
    const std::size_t many = comparison.scaled(files);
    compareParts(comparison, many, filesReading(many), filesReading(fewOf(many)));
}

void compareFilesMemory(Comparison& comparison, std::size_t files)
{
    const std::size_t many = comparison.scaled(files);
    compareMemory(comparison, many, memoryOfFiles(many), memoryOfFiles(fewOf(many)));
}
} // namespace bench
