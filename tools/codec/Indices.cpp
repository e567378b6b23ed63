#include "tools/codec/Indices.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Json.h"

using namespace vumo::Data;

namespace vumo::codec
{
void setIndexType(Stream& stream, const std::string& typeName)
{
    if (Index::creators().count(typeName) == 0)
        throw CodecError("there is no index type " + jsonText(typeName));
    stream.setIndexType(typeName);
}

std::string indexText(const Stream& stream, const Index& index)
{
    if (index.typeName() != stream.indexType())
        throw CodecError("the index " + jsonText(index.asString()) + " is not of type " + jsonText(stream.indexType()));
    return index.asString();
}

Index indexFrom(const Stream& stream, const std::string& text)
{
    try
    {
        return Index::doCreate(stream.indexType(), text);
    }
    catch (Index::eCreationErrors)
    {
        throw CodecError(jsonText(text) + " is not an index of type " + jsonText(stream.indexType()));
    }
}

void addNewElement(Stream& stream, const Index& index, const Handle& element)
{
    if (stream.hasElement(index))
        throw CodecError("the index " + jsonText(index.asString()) + " comes twice");
    if (!stream.setElement(index, element))
        throw CodecError("structure " + jsonText(stream.structure().name()) + " has no members to hold values");
}
} // namespace vumo::codec
