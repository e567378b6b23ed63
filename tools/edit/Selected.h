#pragma once

#include "core/SceneFile.h"
#include "tools/codec/Metadata.h"

/// What was read of the scene, passes, and is at or under the address, if there is one; shares it with the scene. All
/// structures where nothing can be left out, else those that are used.
vumo::codec::Metadata selected(const SceneFile& scene, const Selection& selection, const Address* address = nullptr);
