#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Export.h"

#include <cstdint>
#include <string>

namespace vumo
{
namespace Data
{
/// What all accessors for the host's scene files share: the fixed words of the files, and helpers to read
/// and cut them.
class VUMO_EXPORT AccessorOvri
{
public:
    /// The words of ASCII scene files.
    class VUMO_EXPORT Ascii
    {
    public:
        Ascii() = delete;

        static const std::string& getHeaderPrefix();
        static const std::string& getTrailerPrefix();

        static const std::string& getApplyMetadataCommandName();
        static const std::string& getApplyMetadataCommandFormatFlag();
        static const std::string& getApplyMetadataCommandSceneFlag();
        static const std::string& getApplyMetadataCommandValueFlag();

        static const std::string& getDataStructureCommandName();
        static const std::string& getDataStructureCommandFormatFlag();
        static const std::string& getDataStructureCommandAsStringFlag();

        /// The host's own commands; none of them stands among the metadata.
        static const std::string& getConnectAttrCommandName();
        static const std::string& getCreateNodeCommandName();
        static const std::string& getSetAttrCommandName();
        static const std::string& getRelationshipCommandName();
        static const std::string& getSelectCommandName();
    };

    /// The chunk tags and group types of binary scene files, four characters each.
    class VUMO_EXPORT Binary
    {
    public:
        Binary() = delete;

        static const std::string& getFormChunkName();
        static const std::string& getMainFormChunkType();
        static const std::string& getMetaDataStructureChunkName();
        static const std::string& getApplyNodeMetaDataChunkName();
        static const std::string& getApplySceneMetaDataChunkName();
        static const std::string& getBackwardChunkSizeChunkName();
    };

    AccessorOvri() = delete;

    /// The name, an empty one, under which an `Accessor` keeps the associations of the scene itself.
    static const std::string& getSceneAssociationsName();

    /// Cuts, or extends with zero bytes, the file to `length` bytes.
    static bool truncateFile(const std::string& fileName, std::uint64_t length);

    /// The structure that the text declares in the structure format of that name: a new one, held by nobody.
    /// Null, with the reason appended to `errors`, when there is no such format or the text is faulty.
    static const Structure* deserializeStructure(const std::string& format, const std::string& text,
                                                 std::string& errors);

    /// Makes `result` what the text says in the associations format of that name. False, with the reason
    /// appended to `errors` and `result` left alone, when there is no such format or the text is faulty.
    static bool deserializeAssociations(const std::string& format, const std::string& text, Associations& result,
                                        std::string& errors);
};
} // namespace Data
} // namespace vumo
