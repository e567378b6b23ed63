#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace example
{
/// What the host keeps of a scene: its nodes, each with a name and some geometry, and what it puts at the end
/// of a scene file.
struct Scene
{
    std::vector<std::string> mNodes;

    /// The size of each node's geometry.
    unsigned int mVerticesPerNode = 8;

    /// Bytes of geometry that are left out of the file as a hole, for files that are large without taking
    /// space. A multiple of 8; only for streams that can seek beyond their end.
    std::uint64_t mHoleSize = 0;

    /// The chunks of the trailer, one after the other, up to the one that the host always puts last.
    std::string mTrailer;
};

/// The host's own trailer chunks: the cameras of the views, and the plug-ins that the scene needs. Others may
/// stand before, between and after them.
std::string cameraChunk();
std::string pluginChunk();

/// Writes the scene as a binary scene file. False when the stream failed.
bool writeScene(const Scene& scene, std::ostream& out);

/// Writes the nodes of the scene as an ASCII scene file. False when the stream failed.
bool writeAsciiScene(const Scene& scene, std::ostream& out);
} // namespace example
