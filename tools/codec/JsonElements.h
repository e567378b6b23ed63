#pragma once

#include "tools/codec/Json.h"
#include "vumo/data/Handle.h"
#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"

#include <initializer_list>
#include <string>

namespace vumo::codec
{
/// The pieces that all JSON texts are made of. Whatever reads throws a `CodecError` for what it cannot take.

/// {"structure": NAME, "members": [{"name": NAME, "type": TYPE, "length": LENGTH}, ...]}
std::string structureJson(const Data::Structure& structure);
Ref<const Data::Structure> structureFrom(const JsonValue& value);

/// A number, a pair as an array, or the text of any other index. Throws a `CodecError` for an index that is not of the
/// stream's type.
std::string indexJson(const Data::Stream& stream, const Data::Index& index);

/// The values of the member that the handle is on: one value, or arrays. Throws a `CodecError` for one that is not
/// finite.
std::string valuesJson(const Data::Member& member, const Data::Handle& handle);

/// "index": INDEX, "values": {MEMBER: VALUES, ...}
///
/// The values are an array in the order of the structure where a member's name is not UTF-8.
std::string elementJson(const Data::Stream& stream, const Data::Index& index, Data::Handle element);

/// Adds the element of these two keys, with all its values, to the stream, which has none at the index yet.
void addElement(const JsonValue& element, Data::Stream& stream);

/// A new stream without elements, made from the keys "stream", "structure" and "indexType" of the value.
Data::Stream streamFrom(const JsonValue& value, const Data::Structure& structure);

/// The value of a key that has to be there.
const JsonValue& valueAt(const JsonValue& object, const std::string& key);
std::string textAt(const JsonValue& object, const std::string& key);

/// Refuses what is no object, and keys that it must not have.
void checkKeys(const JsonValue& object, std::initializer_list<const char*> allowed);

/// Refuses what is no array.
const std::vector<JsonValue>& itemsOf(const JsonValue& array);
} // namespace vumo::codec
