#pragma once

#include "core/SceneFile.h"

#include <set>
#include <string>
#include <vector>

/// One change of metadata, in the words of the commands that make one.
struct Edit
{
    enum eVerb
    {
        kSet,
        kRemove,
        kCopy,
        kMove
    };

    /// What becomes of a stream, or an element, that gets into the place of another one.
    enum eMerge
    {
        kFail,
        kKeep,   ///< the one that is there stays, and so does the other where it was
        kReplace ///< the one that is there goes
    };

    eVerb verb = kSet;
    std::vector<std::string> words; ///< the address, for kSet followed by MEMBER=VALUE...
    bool add = false;
    std::string structure;             ///< of a new stream: its text, or the name of one that the file has
    std::string indexType;             ///< of a new stream; empty for "numeric"
    std::vector<std::string> newWords; ///< the last words of the new address
    eMerge merge = kFail;
    std::vector<std::string> structures; ///< that kRemove removes
    bool allUnused = false;              ///< likewise all structures that no stream uses

    /// Whether it is about structures that must not be used, so that all nodes are to be read.
    bool removesStructures() const { return allUnused || !structures.empty(); }

    /// The address, and where something is copied or moved to.
    Address from() const;
    Address to() const;

    /// Throws a `Failure` for words that do not go together.
    void check(bool isToOtherFile = false) const;
};

/// The nodes that the edits are about: of the file itself, also those that something goes to.
std::set<std::string> nodesOf(const std::vector<Edit>& edits);

/// Makes the change in what was read of the scene. Throws a `Failure`; the scene must not be saved then.
void apply(const Edit& edit, SceneFile& scene);
