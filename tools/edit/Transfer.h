#pragma once

#include "core/SceneFile.h"
#include "edit/Edit.h"

/// Makes a copy or a move from one scene to another, or within the same, in what was read of them. Throws a `Failure`;
/// neither scene must be saved then.
void transfer(const Edit& edit, SceneFile& from, SceneFile& to);
