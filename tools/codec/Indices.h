#pragma once

#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"

#include <string>

namespace vumo::codec
{
/// What the readers and writers of all formats do about the indices of a stream. Each throws a `CodecError`.

/// Refuses a type that is not registered.
void setIndexType(Data::Stream& stream, const std::string& typeName);

/// The text of the index; refuses one that is not of the stream's type, which no scene file could hold.
std::string indexText(const Data::Stream& stream, const Data::Index& index);

/// The index that the text means for the stream.
Data::Index indexFrom(const Data::Stream& stream, const std::string& text);

/// Adds a copy of the element; refuses an index that comes twice, and an element without members.
void addNewElement(Data::Stream& stream, const Data::Index& index, const Data::Handle& element);
} // namespace vumo::codec
