#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <set>
#include <string>

namespace vumo::Data
{
/// The accessor for the host's binary scene files, extension "ob".
///
/// Such a file is one tree of chunks. Its last child, the trailer group, ends with a chunk that tells how far
/// back the group's chunks begin, so that the metadata among them is found from the end of the file: reading
/// touches no more of the scene than the first 20 bytes of the file. Writing reads up to 8192 more, for the checksum
/// in its undo record.
class VUMO_EXPORT OvriBinaryFileAccessor : public Accessor
{
public:
    OvriBinaryFileAccessor() = default;

    /// Puts structures() and associations() into the trailer of the file fileName(), in place of the metadata
    /// there; the host's own chunks keep their order around them. Empty associations write nothing.
    ///
    /// The old metadata is known by its first structure. Metadata in front of that, or all of it in a trailer
    /// without any structure, counts as the host's: it stays, and the new metadata follows it and so prevails.
    ///
    /// Refused is what could not be read again, such as a structure whose text gives another one.
    ///
    /// Everything is checked and prepared in memory first: a write that is refused leaves the file as it was.
    /// A write that fails later, because the disk is full, say, puts the old bytes back; `Accessor::eDurability`
    /// says what is done for the case that it is interrupted.
    bool write(std::string& errors) const override;

    bool isFileSupported(const std::string& fileName) const override;

    /// Reads the file fileName() as it stands. Called by itself and not by read(), it registers the structures in the
    /// process-wide registry and adds to associations(); a file whose writing was interrupted is not restored first. A
    /// structure of the same name that is registered already, with other members, is in the way of the file's own.
    bool performRead(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                     std::string& errors) override;

    static bool Debug(const OvriBinaryFileAccessor* object, vumo::Debug::Print& request);
    static bool Debug(const OvriBinaryFileAccessor* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
