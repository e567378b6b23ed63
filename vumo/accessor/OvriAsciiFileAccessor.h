#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <set>
#include <string>

namespace vumo::Data
{
/// The accessor for the host's ASCII scene files, extension "oa".
///
/// Such a file is a script of host statements. The metadata are statements of their own at its end, between the
/// last host statement and the trailer line: "dataStructure" for each structure, "applyMetadata" for each node and
/// for the scene. They are found by searching the file backwards, so that the scene before them is never read.
/// Where a name is applied or declared twice, the statement nearest the end of the file wins.
///
/// Texts keep the encoding of the current C locale.
class VUMO_EXPORT OvriAsciiFileAccessor : public Accessor
{
public:
    OvriAsciiFileAccessor() = default;

    /// Puts structures() and associations() into the file fileName(), just before its trailer line, in place of the
    /// metadata statements that stand below the last host statement. Any other line between those is kept, ahead of
    /// the new ones. Empty associations write nothing.
    ///
    /// A node name is written as it is, or in double quotes if it has blanks. Refused are names that would not be read
    /// back or that a script would take for something else (docs/formats/ascii-scene.md lists them), and structures
    /// with quotes, backslashes or control characters in their names: they could smuggle statements into the script. So
    /// is what could not be read again, such as a structure whose text gives another one.
    ///
    /// Everything is checked and prepared in memory first: a write that is refused leaves the file as it was.
    /// A write that fails later, because the disk is full, say, puts the old bytes back; `Accessor::eDurability`
    /// says what is done for the case that it is interrupted.
    bool write(std::string& errors) const override;

    /// Says whether the first line is that of an ASCII scene file of a supported year.
    bool isFileSupported(const std::string& fileName) const override;

    /// Reads the file fileName() as it stands. Called by itself and not by read(), it registers the structures in the
    /// process-wide registry and adds to associations(); a file whose writing was interrupted is not restored first. A
    /// structure of the same name that is registered already, with other members, is in the way of the file's own.
    bool performRead(const std::set<std::string>* structureNames, const std::set<std::string>* associationNames,
                     std::string& errors) override;

    static bool Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Print& request);
    static bool Debug(const OvriAsciiFileAccessor* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
