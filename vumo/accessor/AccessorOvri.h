#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <cstdint>
#include <set>
#include <string>

namespace vumo::Data
{
class Accessor;

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

        static bool Debug(const Ascii* object, vumo::Debug::Print& request);
        static bool Debug(const Ascii* object, vumo::Debug::Footprint& request);
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

        static bool Debug(const Binary* object, vumo::Debug::Print& request);
        static bool Debug(const Binary* object, vumo::Debug::Footprint& request);
    };

    /// The table of references to content outside the scene, which a scene keeps among its own metadata: a channel
    /// with one stream, each element of it one reference. The file that declares the table's structure says what
    /// types its members have; they are read and written by their text forms.
    class VUMO_EXPORT ExternalContent
    {
    public:
        ExternalContent() = delete;

        /// The names of the table's channel, stream and structure, and of the structure's members.
        static const std::string& getChannelName();
        static const std::string& getStreamName();
        static const std::string& getStructureName();
        static const std::string& getNodeMemberName();
        static const std::string& getKeyMemberName();
        static const std::string& getUnresolvedPathMemberName();
        static const std::string& getResolvedPathMemberName();
        static const std::string& getRolesMemberName();

        /// Stands between the roles of a reference. Inside a role, "-" is written as "--" and ";" as "-*".
        static const std::string& getRolesSeparator();

        /// Reads the scene's own metadata of a scene file, other channels beside the table included. False when the
        /// file cannot be read, with the reason appended to `errors`, and when it declares no structure of the table
        /// or the scene has no metadata.
        static bool readTable(const std::string& fileName, Associations& result, std::string& errors);

        /// The table's stream, owned by the argument; null when there is none. Creates nothing.
        static Stream* getStream(Associations& associations);
        static const Stream* getStream(const Associations& associations);
        static Stream* getStream(Accessor& accessor);
        static const Stream* getStream(const Accessor& accessor);

        /// Reads the reference at which the handle points; the roles are added to `roles`. False when the element
        /// lacks a member or the handle has no data; what is missing reads as empty.
        static bool getEntry(Handle& handle, std::string& node, std::string& key, std::string& unresolvedPath,
                             std::string& resolvedPath, std::set<std::string>& roles);

        /// Writes the reference at which the handle points. False, with the element unchanged, when a member is
        /// missing or cannot hold its text, or when a role is empty.
        static bool setEntry(Handle& handle, const std::string& node, const std::string& key,
                             const std::string& unresolvedPath, const std::string& resolvedPath,
                             const std::set<std::string>& roles);

        /// Writes the resolved path alone. False, with the element unchanged, when there is no such member or it
        /// cannot hold the text.
        static bool updateEntry(Handle& handle, const std::string& resolvedPath);

        static bool Debug(const ExternalContent* object, vumo::Debug::Print& request);
        static bool Debug(const ExternalContent* object, vumo::Debug::Footprint& request);
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

    static bool Debug(const AccessorOvri* object, vumo::Debug::Print& request);
    static bool Debug(const AccessorOvri* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
