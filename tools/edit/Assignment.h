#pragma once

#include "core/SceneFile.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Stream.h"

#include <string>

/// Does what MEMBER=VALUE or MEMBER[i]=VALUE says: sets all values of a member, separated by blanks, or one of them. A
/// string is taken as it stands. The element is the stream's. Throws a `Failure`, maybe after setting some of them.
void assign(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& text,
            vumo::Data::Handle& element);

/// The same the other way: the texts that set all values of the handle's current member, one for each string.
std::vector<std::string> assignmentsOf(const vumo::Data::Member& member, const vumo::Data::Handle& element);
