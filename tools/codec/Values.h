#pragma once

#include "vumo/data/Handle.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vumo::codec
{
/// How the single values of a member are arranged: its length unless that is 1, then 4 and 4 for matrices. Empty for
/// one value.
std::vector<unsigned int> shapeOf(const Data::Member& member);

/// How many single values that are.
std::uint64_t valueCount(const Data::Member& member);

/// The exact texts of all single values of the handle's current member, which is not one of strings. Throws a
/// `CodecError` for a value that is not finite, which no scene file can hold.
std::vector<std::string> numberTexts(const Data::Handle& handle);

/// Stores the i-th single value of the handle's current member; a string is taken as it stands. Numbers are read as
/// a whole: nothing may be left over, and what the type cannot hold is refused. Throws a `CodecError`, with nothing
/// changed.
void setValue(Data::Handle& handle, unsigned int i, const std::string& text);
} // namespace vumo::codec
