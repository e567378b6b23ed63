#pragma once

#include "vumo/data/Associations.h"

#include <iosfwd>
#include <map>
#include <set>
#include <string>

namespace vumo::Data::detail
{
/// Finds and reads the metadata at the end of an ASCII scene file.
class AsciiReader
{
public:
    AsciiReader() = delete;

    /// Says whether the stream begins with the first line of an ASCII scene file of a supported year. False, with
    /// `errors` replaced by the reason, when not.
    static bool checkHeader(std::istream& in, std::string& errors);

    /// Reads the wanted metadata of a scene; a null set wants every name. Registers the structures with
    /// `Structure::registerStructure` and stores the associations under their names; of several for one name the one
    /// nearest the end of the file stays. False, with the reason in `errors`, when that failed; what was read so far
    /// stays where it is.
    static bool readMetadata(std::istream& in, const std::set<std::string>* structureNames,
                             const std::set<std::string>* associationNames,
                             std::map<std::string, Associations>& associations, std::string& errors);
};
} // namespace vumo::Data::detail
