#pragma once

#include "benchmarks/Records.h"
#include "vumo/accessor/Accessor.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench
{
/// A scene file in the directory for temporary files with the records as metadata of one node, removed with the
/// object. A binary scene has 4 GiB of geometry, as a hole that takes no space.
class SceneFile
{
public:
    /// The extension, "oa" or "ob", says what kind of file it is.
    SceneFile(const std::string& extension, const std::vector<Record>& records);
    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;
    ~SceneFile();

    const std::string& name() const { return mName; }

    /// In bytes: by how much the file grew when the metadata came to the scene.
    std::uint64_t metadataSize() const { return mMetadataSize; }

private:
    void writeScene() const;
    void attach(const std::vector<Record>& records) const;

    std::string mName;
    std::uint64_t mMetadataSize = 0;
};

/// An accessor for the file that has not read it yet.
std::unique_ptr<vumo::Data::Accessor> accessorFor(const SceneFile& file);

/// Throw `WrongResult` when the library refuses.
void read(vumo::Data::Accessor& accessor, const SceneFile& file);
void write(const vumo::Data::Accessor& accessor);

/// The node's associations.
const vumo::Data::Associations& metadataOf(const vumo::Data::Accessor& accessor);

/// Their one stream.
const vumo::Data::Stream& streamIn(const vumo::Data::Accessor& accessor);
} // namespace bench
