#pragma once

#include "vumo/accessor/BinaryChunkHeader.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace vumo::Data
{
namespace detail
{
class MetadataRead;
}

/// Finds and reads the metadata in the trailer of a binary scene file.
///
/// Trusts nothing that the file says: each size and offset is compared with what the file holds before it is
/// used to seek, to loop or to allocate.
class VUMO_EXPORT BinaryReader
{
public:
    BinaryReader() = delete;

    /// Finds the trailer of a scene and leaves the stream at the first of its chunks. The results, all in
    /// bytes from the start of the file: the size field of the main chunk, the size field of the trailer group,
    /// the chunk "BCSZ" that ends the trailer. False, with `errors` replaced by the reason, when the stream
    /// holds no such scene.
    ///
    /// What stands between the main chunk's group type and the trailer is neither read nor checked, nor is the
    /// header of the trailer group, nor what may follow the main chunk.
    static bool seekToTrailerStart(std::istream& in, std::uint64_t& mainSizePosition,
                                   std::uint64_t& trailerSizePosition, std::uint64_t& trailerEnd, std::string& errors);

    /// Says whether the chunk holds associations, of a node or of the scene.
    static bool isApplyMetadataChunk(const BinaryChunkHeader& header);

    /// Reads the metadata of a scene. Of several associations of one name the last one counts, or with a filter the
    /// first. False, with the reason in `errors`, when that failed; what was read so far stays where it is.
    ///
    /// Two structures of one name with different members are refused, because the elements that use that name
    /// could mean either.
    static bool readMetadata(std::istream& in, detail::MetadataRead& read, std::string& errors);

    /// Where the byte stands in a chunk of metadata, from its header on, that begins the one at `character` in its text
    /// in the encoding of the locale.
    static std::size_t findCharacter(std::string_view chunk, std::size_t character);

    static bool Debug(const BinaryReader* object, vumo::Debug::Print& request);
    static bool Debug(const BinaryReader* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
