#pragma once

#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"

#include <functional>
#include <string>

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

    bool isSceneFirst; ///< ahead of the nodes, or after them
    const char* structureFailed;
    const char* nodeFailed;
    const char* sceneFailed;
};

/// Appends all metadata of a file in that form: the structures, also those that streams use beyond the given ones, the
/// nodes and the scene. False, with the reasons and the form's sentence appended to `errors`, at the first of them that
/// cannot be written so that it can be read again.
bool appendMetadata(const MetadataForm& form, const AccessorState& metadata, std::string& out, std::string& errors);
} // namespace vumo::Data::detail
