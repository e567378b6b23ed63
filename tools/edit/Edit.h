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

/// The same for a copy or a move from one scene to another.
void apply(const Edit& edit, SceneFile& from, SceneFile& to);

/// The structure that the text declares, or that has this name, referenced by the scene: new ones are added to it.
/// Throws a `Failure` when there is another of the name.
const vumo::Data::Structure& structureToUse(SceneFile& scene, const std::string& text);
const vumo::Data::Structure& addStructure(SceneFile& scene, const vumo::Data::Structure& structure);

/// The node, to be added to; a new one where there is none. Throws a `Failure` for one that cannot be read.
vumo::Data::Associations& nodeToEdit(SceneFile& scene, const std::string& name);

/// Puts the stream into the channel under that name, unless one is there that is to stay. Returns whether it did.
/// Throws a `Failure` where one is there and must not be.
bool putStream(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& name,
               vumo::Data::Channel channel, Edit::eMerge merge);
