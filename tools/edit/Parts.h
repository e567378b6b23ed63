#pragma once

#include "core/SceneFile.h"
#include "edit/Edit.h"

#include <string>

/// The steps that edits of a scene are made of. Where something is missing that they need, they throw a `Failure`, too.

/// The structure that the text declares, or that has this name, referenced by the scene: new ones are added to it.
/// Throws a `Failure` when there is another of the name, or none.
const vumo::Data::Structure& structureToUse(SceneFile& scene, const std::string& text);
const vumo::Data::Structure& knownStructure(const SceneFile& scene, const std::string& name);
const vumo::Data::Structure& addStructure(SceneFile& scene, const vumo::Data::Structure& structure);

/// The node, to be added to; a new one where there is none. Throws a `Failure` for one that cannot be read.
vumo::Data::Associations& nodeToEdit(SceneFile& scene, const std::string& name);

/// Puts the stream into the channel under that name, unless one is there that is to stay. Returns whether it did.
/// Throws a `Failure` where one is there and must not be.
bool putStream(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& name,
               vumo::Data::Channel channel, Edit::eMerge merge);

/// The stream at that address, shared with nobody.
vumo::Data::Stream& streamToEdit(SceneFile& scene, const Address& address);

/// Whether what is there, which the message names, is to be replaced. Throws a `Failure` where it must not be there.
bool mayReplace(const SceneFile& scene, Edit::eMerge merge, const std::string& what);
