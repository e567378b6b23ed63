#include "tools/codec/JsonElements.h"

#include "tools/codec/CodecError.h"
#include "tools/codec/Indices.h"
#include "tools/codec/Values.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

using namespace vumo::Data;

namespace vumo::codec
{
namespace
{
std::string memberJson(const Member& member)
{
    std::string json = "{\"name\": " + jsonText(Member::name(&member)) + ", \"type\": \"" +
                       Member::typeName(Member::type(&member)) + "\"";
    if (Member::length(&member) != 1)
        json += ", \"length\": " + std::to_string(Member::length(&member));
    return json + "}";
}

unsigned int lengthFrom(const JsonValue& value)
{
    unsigned int length = 0;
    const char* const end = value.text.c_str() + value.text.size();
    const std::from_chars_result result = std::from_chars(value.text.c_str(), end, length);
    if (value.kind != JsonValue::kNumber || result.ec != std::errc() || result.ptr != end || length == 0)
        throw CodecError("the length of a member is a number from 1 to 4294967295");
    return length;
}

void addMember(const JsonValue& value, Structure& structure)
{
    checkKeys(value, {"name", "type", "length"});
    const std::string name = textAt(value, "name");
    const std::string typeName = textAt(value, "type");
    const JsonValue* const length = value.find("length");
    const Member::eDataType type = Member::typeFromName(typeName.c_str());
    if (type == Member::kInvalidType)
        throw CodecError("there is no type " + jsonText(typeName));
    if (name.find('\0') != std::string::npos ||
        !structure.addMember(type, length ? lengthFrom(*length) : 1, name.c_str()))
        throw CodecError("a member cannot have the name " + jsonText(name) + ", or another has it");
}

/// The values as one text each, strings in quotes.
std::vector<std::string> valueTexts(const Handle& handle)
{
    if (handle.dataType() != Member::kString)
    {
        std::vector<std::string> texts = numberTexts(handle);
        std::replace(texts.begin(), texts.end(), std::string("-0"), std::string("-0.0")); // else read as the integer 0
        return texts;
    }
    std::vector<std::string> texts;
    const auto values = handle.values<const char*>();
    for (unsigned int i = 0; i < values.size(); ++i)
        texts.push_back(values[i] ? jsonText(values[i]) : "null");
    return texts;
}

/// Puts the texts into arrays of that shape, from its level on.
std::string arrayJson(const std::vector<unsigned int>& shape, std::size_t level,
                      std::vector<std::string>::const_iterator& text)
{
    if (level == shape.size())
        return *text++;
    std::string json = "[";
    for (unsigned int i = 0; i < shape[level]; ++i)
        json += (i > 0 ? ", " : "") + arrayJson(shape, level + 1, text);
    return json + "]";
}

/// Appends the single values of arrays of that shape.
void flatten(const JsonValue& value, const std::vector<unsigned int>& shape, std::size_t level,
             std::vector<const JsonValue*>& result)
{
    if (level == shape.size())
    {
        result.push_back(&value);
        return;
    }
    if (value.kind != JsonValue::kArray || value.items.size() != shape[level])
        throw CodecError("an array of " + std::to_string(shape[level]) + " is expected");
    for (const JsonValue& item : value.items)
        flatten(item, shape, level + 1, result);
}

/// The values of all members as the element says them, one after the other.
std::vector<const JsonValue*> singleValues(const JsonValue& values, const Structure& structure)
{
    const bool isArray = values.kind == JsonValue::kArray;
    if ((!isArray && values.kind != JsonValue::kObject) || values.items.size() != structure.memberCount())
        throw CodecError("the values of " + std::to_string(structure.memberCount()) + " members are expected");
    std::vector<const JsonValue*> result;
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        const std::string name = Member::name(structure.member(i));
        const JsonValue* const value = isArray ? &values.items[i] : values.find(name, i);
        if (!value)
            throw CodecError("member " + jsonText(name) + " is missing");
        at([&] { return "member " + jsonText(name); },
           [&] { flatten(*value, shapeOf(*structure.member(i)), 0, result); });
    }
    return result;
}

void setFromJson(Handle& handle, unsigned int i, const JsonValue& value)
{
    const Member::eDataType type = handle.dataType();
    if (type == Member::kString)
    {
        if (value.kind != JsonValue::kNull) // a new element has it
            setValue(handle, i, textFrom(value));
        return;
    }
    const JsonValue::eKind expected = type == Member::kBoolean ? JsonValue::kBoolean : JsonValue::kNumber;
    if (value.kind != expected)
        throw CodecError(type == Member::kBoolean ? "true or false is expected" : "a number is expected");
    setValue(handle, i, value.text);
}

/// A new element of these values. It is made when all of them are there: a structure may promise more than memory has.
Handle elementFrom(const JsonValue& values, const Structure& structure)
{
    const std::vector<const JsonValue*> singles = singleValues(values, structure);
    Handle element(structure);
    auto single = singles.begin();
    for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
    {
        const std::uint64_t count = valueCount(*structure.member(i));
        at([&] { return "member " + jsonText(Member::name(structure.member(i))); },
           [&] {
               for (unsigned int k = 0; k < count; ++k)
                   setFromJson(element, k, **single++);
           });
    }
    return element;
}

/// The text that the index type reads.
std::string indexTextFrom(const JsonValue& value, const std::string& indexType)
{
    if (indexType == "numeric" && value.kind == JsonValue::kNumber)
        return value.text;
    const bool isPair = indexType == "pair" && value.kind == JsonValue::kArray && value.items.size() == 2 &&
                        value.items[0].kind == JsonValue::kNumber && value.items[1].kind == JsonValue::kNumber;
    if (isPair)
        return value.items[0].text + " " + value.items[1].text;
    if (indexType == "numeric" || indexType == "pair")
        throw CodecError(indexType == "pair" ? "an array of two numbers is expected" : "a number is expected");
    return textFrom(value);
}
} // namespace

std::string structureJson(const Structure& structure)
{
    std::string json = "{\"structure\": " + jsonText(structure.name()) + ", \"members\": [";
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
        json += (i > 0 ? ", " : "") + memberJson(*structure.member(i));
    return json + "]}";
}

Ref<const Structure> structureFrom(const JsonValue& value)
{
    checkKeys(value, {"structure", "members"});
    const std::string name = textAt(value, "structure");
    if (name.find('\0') != std::string::npos)
        throw CodecError("the name of a structure has no zero byte");
    const Ref<Structure> structure(Structure::create());
    structure->setName(name.c_str());
    for (const JsonValue& member : itemsOf(valueAt(value, "members")))
        addMember(member, *structure);
    return Ref<const Structure>(structure.get());
}

std::string indexJson(const Stream& stream, const Index& index)
{
    std::string text = indexText(stream, index);
    if (stream.indexType() == "numeric")
        return text;
    if (stream.indexType() != "pair")
        return jsonText(text);
    std::string pair = "[" + text + "]";
    return pair.insert(pair.find(' '), ",");
}

std::string valuesJson(const Member& member, const Handle& handle)
{
    const std::vector<std::string> texts = valueTexts(handle);
    auto text = texts.begin();
    return arrayJson(shapeOf(member), 0, text);
}

std::string elementJson(const Stream& stream, const Index& index, Handle element)
{
    std::string json = "\"index\": " + indexJson(stream, index) + ", \"values\": ";
    std::vector<std::string> keys;
    bool areTexts = true;
    for (const Member& member : stream.structure())
    {
        keys.push_back(jsonText(Member::name(&member)));
        areTexts = areTexts && keys.back()[0] == '"';
    }
    json += areTexts ? "{" : "[";
    for (unsigned int i = 0; element.setPositionByMemberIndex(i); ++i)
        json +=
            (i > 0 ? ", " : "") + (areTexts ? keys[i] + ": " : "") + valuesJson(*stream.structure().member(i), element);
    return json + (areTexts ? "}" : "]");
}

void addElement(const JsonValue& element, Stream& stream)
{
    const Index index =
        at([] { return std::string("index"); },
           [&] { return indexFrom(stream, indexTextFrom(valueAt(element, "index"), stream.indexType())); });
    const Handle values = at([] { return std::string("values"); },
                             [&] { return elementFrom(valueAt(element, "values"), stream.structure()); });
    addNewElement(stream, index, values);
}

Stream streamFrom(const JsonValue& value, const Structure& structure)
{
    Stream stream(structure, textAt(value, "stream"));
    setIndexType(stream, textAt(value, "indexType"));
    return stream;
}

const JsonValue& valueAt(const JsonValue& object, const std::string& key)
{
    const JsonValue* const value = object.find(key);
    if (!value)
        throw CodecError("the key " + jsonText(key) + " is missing");
    return *value;
}

std::string textAt(const JsonValue& object, const std::string& key)
{
    return at([&] { return key; }, [&] { return textFrom(valueAt(object, key)); });
}

void checkKeys(const JsonValue& object, std::initializer_list<const char*> allowed)
{
    if (object.kind != JsonValue::kObject)
        throw CodecError("an object is expected");
    for (const std::string& key : object.keys)
    {
        if (std::find(allowed.begin(), allowed.end(), key) == allowed.end())
            throw CodecError("the key " + jsonText(key) + " is not known here");
    }
}

const std::vector<JsonValue>& itemsOf(const JsonValue& array)
{
    if (array.kind != JsonValue::kArray)
        throw CodecError("an array is expected");
    return array.items;
}
} // namespace vumo::codec
