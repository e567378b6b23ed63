#pragma once

#include "core/SceneFile.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"

#include <string>
#include <vector>

/// The index that `text` means for the stream; throws a `Failure` when it means none.
vumo::Data::Index indexFrom(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& text);

/// The element at the index that `text` means, borrowed; throws a `Failure`, which ends with the advice, when there is
/// none.
vumo::Data::Handle elementAt(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& text,
                             const std::string& advice = "");

/// A member's values, or one of them.
struct MemberPart
{
    unsigned int first = 0;
    unsigned int count = 0;
};

/// Moves the stream's element to the member that `name` means, MEMBER or MEMBER[i], and says which of its values. A
/// member whose very name looks like one with an index goes first. Throws a `Failure` when there is none.
MemberPart findMember(const SceneFile& scene, const vumo::Data::Stream& stream, const std::string& name,
                      vumo::Data::Handle& element);

/// Values of the handle's current member, as a cell of a table: separated by blanks, several strings in double quotes.
std::string cellText(const vumo::Data::Handle& handle, const MemberPart& part);

/// The same as JSON: one value, or an array of them. The handle is on that member. Throws for what is not finite.
std::string valueJson(const vumo::Data::Member& member, const vumo::Data::Handle& handle, const MemberPart& part);
