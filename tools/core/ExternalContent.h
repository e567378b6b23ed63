#pragma once

#include "core/JsonObject.h"
#include "vumo/data/Stream.h"
#include "vumo/data/StreamIterator.h"

#include <set>
#include <string>
#include <vector>

/// An entry of a scene's table of external content.
struct ExternalEntry
{
    /// The one that the iterator is on.
    explicit ExternalEntry(vumo::Data::StreamIterator& element);

    std::string index; ///< in the table's stream
    std::string node;
    std::string key;
    std::string unresolvedPath;
    std::string resolvedPath;
    std::set<std::string> roles;

    /// Whether there is nothing at its path: the resolved one, or the unresolved one where that is empty. One that
    /// does not begin with a slash starts at the folder of the scene. An entry without paths is missing.
    bool isMissing(const std::string& sceneFile) const;

    /// The entry, and whether it is missing.
    JsonObject json(const std::string& sceneFile) const;
};

/// The entries of the table, in the order of their indices; none for null.
std::vector<ExternalEntry> externalEntries(const vumo::Data::Stream* table);
