#include "examples/scene/Scene.h"

#include "examples/scene/Chunks.h"

namespace example
{
namespace
{
constexpr std::uint64_t kHeaderSize = 16;
constexpr std::uint64_t kTypeSize = 4;
constexpr std::uint64_t kBackwardChunkSize = 24;

/// From the first chunk of the trailer's end to the end of the offset that leads back from there.
constexpr std::uint64_t kOffsetEnd = 20;

std::string text(const std::string& value)
{
    return value + '\0';
}

/// Three coordinates for each vertex, in fixed-point numbers.
std::string geometryChunk(unsigned int vertices)
{
    std::string coordinates;
    for (unsigned int i = 0; i < 3 * vertices; ++i)
        coordinates += bigEndian(std::uint64_t(1000) * i, 4);
    return chunk("VRTX", coordinates);
}

std::string nodeGroup(const std::string& name, unsigned int vertices)
{
    return group("NODE", chunk("NAME", text(name)) + geometryChunk(vertices));
}

std::string contents(const Scene& scene)
{
    std::string nodes;
    for (const std::string& name : scene.mNodes)
        nodes += nodeGroup(name, scene.mVerticesPerNode);
    return group("HEAD", chunk("VERS", text("2024"))) + group("DAGS", nodes);
}

/// The group that ends the file. Its last chunk leads back from its end to the group's first chunk.
std::string trailerGroup(const std::string& chunks)
{
    return chunkHeader("FOR8", kTypeSize + chunks.size() + kBackwardChunkSize) + "TRLR" + chunks +
           chunk("BCSZ", bigEndian(chunks.size() + kOffsetEnd, 4));
}
} // namespace

std::string cameraChunk()
{
    return chunk("CAMS", text("perspective") + text("top"));
}

std::string pluginChunk()
{
    return chunk("PLUG", text("fur 2.1"));
}

bool writeScene(const Scene& scene, std::ostream& out)
{
    const std::string children = contents(scene);
    const std::string trailer = trailerGroup(scene.mTrailer);
    const std::uint64_t holeChunkSize = scene.mHoleSize == 0 ? 0 : kHeaderSize + scene.mHoleSize;

    out << chunkHeader("FOR8", kTypeSize + children.size() + holeChunkSize + trailer.size()) << "Ovri" << children;
    if (scene.mHoleSize != 0)
    {
        out << chunkHeader("GEOM", scene.mHoleSize);
        out.seekp(static_cast<std::streamoff>(scene.mHoleSize), std::ios::cur);
    }
    out << trailer;
    return out.flush().good();
}
} // namespace example
