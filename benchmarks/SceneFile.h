#pragma once

#include "benchmarks/Records.h"
#include "benchmarks/ScratchFile.h"
#include "vumo/accessor/Accessor.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench
{
/// A scene file in the directory for temporary files with the records as metadata of one node, removed with the
/// object. The geometry of a binary scene is a hole that takes no space; without one the scene is a small one.
class SceneFile
{
public:
    static constexpr std::uint64_t kGeometrySize = std::uint64_t(4) << 30;

    /// The extension, "oa" or "ob", says what kind of file it is.
    SceneFile(const std::string& extension, const std::vector<Record>& records,
              std::uint64_t geometrySize = kGeometrySize);

    const std::string& name() const { return mFile.name(); }

    /// In bytes: by how much the file has grown since the metadata came to the scene.
    std::uint64_t metadataSize() const;

private:
    void writeScene(std::uint64_t geometrySize) const;

    ScratchFile mFile;
    std::uint64_t mBareSize = 0; // of the file without metadata
};

/// An accessor for the file that has not read it yet.
std::unique_ptr<vumo::Data::Accessor> accessorFor(const SceneFile& file);

/// One that has read the file, and will write these records in the place of the node's.
std::unique_ptr<vumo::Data::Accessor> writerOf(const SceneFile& file, const std::vector<Record>& records);

/// Throw `WrongResult` when the library refuses.
void read(vumo::Data::Accessor& accessor, const SceneFile& file);
void write(const vumo::Data::Accessor& accessor);

/// The node's associations.
const vumo::Data::Associations& metadataOf(const vumo::Data::Accessor& accessor);

/// Their one stream.
const vumo::Data::Stream& streamIn(const vumo::Data::Accessor& accessor);
} // namespace bench
