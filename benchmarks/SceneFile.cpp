#include "benchmarks/SceneFile.h"

#include "benchmarks/Streams.h"
#include "examples/scene/Scene.h"

#include <filesystem>
#include <fstream>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr char kNode[] = "Body";
constexpr unsigned int kVertices = 50'000;
constexpr unsigned int kFewVertices = 8;

bool isAscii(const std::string& name)
{
    return std::filesystem::path(name).extension() == ".oa";
}
} // namespace

SceneFile::SceneFile(const std::string& extension, const std::vector<Record>& records, std::uint64_t geometrySize)
    : mFile(extension)
{
    writeScene(geometrySize);
    mBareSize = std::filesystem::file_size(name());
    write(*writerOf(*this, records));
}

std::uint64_t SceneFile::metadataSize() const
{
    return std::filesystem::file_size(name()) - mBareSize;
}

void SceneFile::writeScene(std::uint64_t geometrySize) const
{
    example::Scene scene;
    scene.mNodes = {"World", kNode};
    scene.mVerticesPerNode = geometrySize > 0 ? kVertices : kFewVertices;
    scene.mHoleSize = geometrySize;
    scene.mTrailer = example::cameraChunk() + example::pluginChunk();
    std::ofstream file(name(), std::ios::binary | std::ios::trunc);
    if (!(isAscii(name()) ? example::writeAsciiScene(scene, file) : example::writeScene(scene, file)))
        throw WrongResult("cannot write the scene " + name());
}

std::unique_ptr<Accessor> accessorFor(const SceneFile& file)
{
    return Accessor::accessorByExtension(file.name());
}

std::unique_ptr<Accessor> writerOf(const SceneFile& file, const std::vector<Record>& records)
{
    std::unique_ptr<Accessor> accessor = accessorFor(file);
    read(*accessor, file);
    accessor->setConflict(Accessor::kOverwrite); // others write to the file, too
    accessor->setStructures({&recordStructure()});
    accessor->associations()[kNode] = associationsOf(streamOf(BlockArray(records), Storage::kMapped));
    return accessor;
}

void read(Accessor& accessor, const SceneFile& file)
{
    std::string errors;
    if (!accessor.read(file.name(), errors))
        throw WrongResult("the library does not read the file: " + errors);
}

void write(const Accessor& accessor)
{
    std::string errors;
    if (!accessor.write(errors))
        throw WrongResult("the library does not write the file: " + errors);
}

const Associations& metadataOf(const Accessor& accessor)
{
    const auto found = accessor.associations().find(kNode);
    if (found == accessor.associations().end())
        throw WrongResult("the node's metadata is lost");
    return found->second;
}

const Stream& streamIn(const Accessor& accessor)
{
    return streamIn(metadataOf(accessor));
}
} // namespace bench
