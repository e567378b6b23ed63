#pragma once

#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/Replacement.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// How one kind of scene file holds metadata, and what it says when some of that cannot be written. The functions
/// append to `out`; they return false with the reasons appended to `errors`.
struct MetadataForm
{
    std::function<bool(const Structure& structure, std::string& out, std::string& errors)> appendStructure;

    /// Appends nothing for empty associations. Those of the scene have the scene associations name.
    std::function<bool(const std::string& nodeName, const Associations& associations, eNumbers numbers,
                       std::string& out, std::string& errors)>
        appendAssociations;

    /// Sets length and checksum by what one of the others has appended.
    void (*measure)(std::string_view written, FileBlock& block);

    bool isSceneFirst;      ///< ahead of the nodes, or after them
    bool isStructureBefore; ///< must a structure stand before the associations that use it?
    const char* structureFailed;
    const char* nodeFailed;
    const char* sceneFailed;
};

/// A piece of metadata where it stands in the file that is to be written.
struct BlockPlace
{
    std::uint64_t begin = 0;
    std::uint64_t end = 0; ///< with the end of its line, or its padding
    std::uint64_t checksum = 0;
    const char* mustStay = nullptr; ///< why it can neither be removed nor replaced, if so
};

/// The part of a file where metadata stands.
struct FileRegion
{
    std::vector<BlockPlace> blocks; ///< in the order of the file
    std::uint64_t insertion = 0;    ///< where metadata goes that takes no block's place
    std::uint64_t end = 0;
    bool endsLine = true; ///< or does the last block stand at the end of the file, without an end of line?

    std::uint64_t checksum() const { return metadataChecksum(blocks.begin(), blocks.end()); }
};

/// Makes the new bytes of a region. All metadata of the accessor is written in that form, also the structures that
/// streams use beyond those of the accessor. It goes to the insertion and all blocks go; or, where unread blocks are
/// kept, it goes into the place of what was read.
///
/// Gives in `written` which metadata the file will have then. False, with the reasons and
/// the form's sentence appended to `errors`, at the first piece that cannot be written so that it can be read again,
/// or when it does not go with what is kept.
bool replaceMetadata(const MetadataForm& form, const AccessorState& metadata, const FileRegion& region,
                     Replacement& replacement, FileBlocks& written, std::string& errors);
} // namespace vumo::Data::detail
