#pragma once

#include "core/Batch.h"
#include "core/SceneFile.h"
#include "edit/Edit.h"

#include <string>
#include <vector>

/// Makes the edits in one file, all or none of them, with one save.
eExitCode makeEdits(const Job& job, const std::vector<Edit>& edits);

/// Opens a scene to be edited and saved as the session's options say: in place, in another file, or not at all.
SceneFile openToEdit(const Job& job, const std::string& fileName);

/// Saves it, or prints what that would cost. Throws a `Failure`; the files are then as they were.
void save(const Job& job, SceneFile& scene);

/// Refuses options that ask for one output of several saves.
void checkSaving(const Session& session, bool writesTwice = false);
