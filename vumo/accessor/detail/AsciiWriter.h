#pragma once

#include <string>

namespace vumo::Data::detail
{
struct AccessorState;

/// Writes metadata as statements, and puts it at the end of an ASCII scene file.
class AsciiWriter
{
public:
    AsciiWriter() = delete;

    /// Replaces the metadata below the last host statement of the file; other lines there stay, ahead of the new
    /// statements. False, with the reason appended to `errors`, when that failed.
    ///
    /// The change is made as a whole or not at all, even if it is interrupted: see `Accessor::eDurability`. Everything
    /// is built and checked before the first byte of the file changes.
    static bool writeMetadata(AccessorState& metadata, std::string& errors);
};
} // namespace vumo::Data::detail
