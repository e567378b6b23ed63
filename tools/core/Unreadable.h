#pragma once

#include "core/Batch.h"
#include "core/SceneFile.h"

/// Gives out the structures and nodes that could not be read, with the reasons, a row each.
void addUnreadable(const Job& job, const SceneFile& scene);
