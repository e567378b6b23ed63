#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <iosfwd>
#include <string>

namespace vumo::Data
{
namespace detail
{
struct AccessorState;
}

/// Writes metadata as chunks, and puts it into the trailer of a binary scene file.
class VUMO_EXPORT BinaryWriter
{
public:
    BinaryWriter() = delete;

    /// Writes a "DATS" chunk. False when there is no format "raw", when the structure's text would not read back
    /// as an equal structure, or when the stream failed.
    static bool writeStructureChunk(std::ostream& out, const Structure& structure);

    /// Writes a chunk of the tag "MTDA", for the node of that name, or "SMTD", for the scene; nothing for empty
    /// associations. False when there is no format "raw", when the name holds a zero byte, when the
    /// associations could not be serialized or converted, or when the stream failed. What is wrong is appended to
    /// `errors` where that is not null.
    static bool writeAssociationsChunk(std::ostream& out, const std::string& tag, const std::string& name,
                                       const Associations& associations, std::string* errors = nullptr);

    /// Replaces the metadata in the trailer of the file, moves the end of the trailer and of the main chunk
    /// accordingly and cuts the file there. False, with the reason in `errors`, when that failed.
    ///
    /// The change is made as a whole or not at all, even if it is interrupted: see `Accessor::eDurability`.
    ///
    /// A structure that a stream uses is written with the others also where it is not among those of the accessor; two
    /// different ones of a name are refused, as is all else that could not be read again. Metadata that a read has kept
    /// in the file stays. The whole tail is built and checked
    /// before the first byte of the file changes; a file that has anything after its main chunk is refused, because
    /// that would be lost.
    static bool writeMetadata(detail::AccessorState& metadata, std::string& errors);

    static bool Debug(const BinaryWriter* object, vumo::Debug::Print& request);
    static bool Debug(const BinaryWriter* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
