#pragma once

#include "core/Batch.h"
#include "core/SceneFile.h"
#include "edit/Edit.h"

#include <istream>
#include <string>
#include <vector>

/// The edits of a script, all of which are checked. `name` stands in the messages of the failures that it throws.
std::vector<Edit> readScript(std::istream& in, const std::string& name);

/// Throws a `Failure` for another word than keep, replace and fail.
Edit::eMerge mergeOf(const std::string& word);

/// Prints what was read of the scene as a script that makes it anew where it is missing.
void printScript(const Job& job, const SceneFile& scene);
