#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <string>
#include <vector>

namespace vumo::Data
{
/// What the raw formats share: their keywords, and how their readers clean and cut text.
class VUMO_EXPORT SerializerRaw
{
public:
    /// Three keywords are the same text, "name", one for each format that has it.
    enum eKeyword : unsigned int
    {
        kTypeSeparator,
        kEndAssociations,
        kEndChannel,
        kChannel,
        kChannelName,
        kIndexType,
        kFieldSeparator,
        kFormatName,
        kEndStream,
        kStream,
        kStreamName,
        kStructure,
        kStructureName
    };

    /// The keyword's text, static; "????" for any number that is no keyword.
    static const char* keyword(eKeyword k);

    /// Removes whitespace from both ends of `s`, inner whitespace stays; returns the result.
    static std::string collapseWhitespace(std::string& s);

    /// Shrinks every run of newlines and ":" in `s` to its last character, then makes every newline a ":";
    /// returns the result.
    static std::string standardizeSeparators(std::string& s);

    /// Appends the pieces of `s` between delimiters to `pieces` and returns it. Empty pieces count, but none
    /// follows a delimiter at the end.
    static std::vector<std::string>& splitString(const std::string& s, char delimiter,
                                                 std::vector<std::string>& pieces);

    static bool Debug(const SerializerRaw* object, vumo::Debug::Print& request);
    static bool Debug(const SerializerRaw* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
