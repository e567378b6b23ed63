#pragma once

#include "core/SceneFile.h"

#include <string>

/// A scene that was saved, held for as long as its metadata are nowhere else: others who use the library do not write
/// to it meanwhile.
class HeldScene
{
public:
    /// Locks the file for writers, as a save does. References the scene. Throws a `Failure` when somebody else is
    /// writing to it still after the session's wait.
    HeldScene(const Session& session, const SceneFile& saved);
    HeldScene(const HeldScene&) = delete;
    HeldScene& operator=(const HeldScene&) = delete;
    ~HeldScene();

    /// Whether the name leads to this file still, with the metadata that were saved.
    bool isThere() const;

private:
    const Session& mSession;
    const SceneFile& mSaved;
    int mDescriptor;
};
