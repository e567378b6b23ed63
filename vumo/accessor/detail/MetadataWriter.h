#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/FileBlocks.h"
#include "vumo/accessor/detail/Replacement.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

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

/// Writes the metadata of an accessor. Structures that streams use though nobody named them are written after the
/// others: without them their elements could not be read again.
class MetadataWriter
{
public:
    MetadataWriter(const MetadataForm& form, const AccessorState& metadata, Replacement& replacement,
                   FileBlocks& written, std::string& errors);

    /// Everything, in the order of the form.
    bool writeAll();

protected:
    using AssociationsMap = std::map<std::string, Associations>;

    /// The first stream that uses a structure.
    struct User
    {
        const std::string* node;
        std::string text;
    };

    void findMoreStructures();
    bool writeStructures();

    /// A structure that nobody named is refused together with its first user.
    bool writeStructure(const Structure& structure);

    bool writeScene();
    bool writeNodes();

    /// The metadata of one node, or of the scene. Reports all that is wrong with it.
    bool writeEntry(const AssociationsMap::value_type& entry);

    /// Says whether the structure that is written under the name of a stream's structure always is an equal one.
    bool usesOneStructureOfAName(const Associations& associations, std::string& faults) const;

    /// Takes note of the block that was appended from there on.
    void addWritten(FileBlock::eKind kind, const std::string& name, std::size_t begin);

    bool fail(const char* message);

    const MetadataForm& mForm;
    const Accessor::StructureSet& mStructures;
    const AssociationsMap& mAssociations;
    const AssociationsMap::const_iterator mScene;
    const eNumbers mNumbers;
    std::map<const Structure*, User, Accessor::StructureNameLessThan> mMore; // that no caller named
    Replacement& mReplacement;
    std::string& mOut;
    FileBlocks& mWritten;
    std::string& mErrors;
};
} // namespace vumo::Data::detail
