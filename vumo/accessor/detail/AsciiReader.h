#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
class MetadataRead;

/// Finds and reads the metadata at the end of an ASCII scene file.
class AsciiReader
{
public:
    AsciiReader() = delete;

    /// Says whether the stream begins with the first line of an ASCII scene file of a supported year. False, with
    /// `errors` replaced by the reason, when not.
    static bool checkHeader(std::istream& in, std::string& errors);

    /// Reads the metadata of a scene; of several associations or structures of one name the one nearest the end of the
    /// file counts. False, with the reason in `errors`, when that failed; what was read so far stays where it is.
    static bool readMetadata(std::istream& in, MetadataRead& read, std::string& errors);

    /// Where the byte stands in a statement that gives the one at `character` in its text.
    static std::size_t findCharacter(std::string_view statement, std::size_t character);
};
} // namespace vumo::Data::detail
