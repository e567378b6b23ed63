#pragma once

#include "core/SceneFile.h"

#include <string>
#include <vector>

/// Removes structures that no stream uses from a scene of which all was read: those that are named, or all of them.
/// Throws a `Failure` for one that is missing or used, and where a node cannot be read: nobody knows what that uses.
void removeStructures(SceneFile& scene, const std::vector<std::string>& names);
void removeUnusedStructures(SceneFile& scene);
