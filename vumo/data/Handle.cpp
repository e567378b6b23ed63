#include "vumo/data/Handle.h"

#include "vumo/data/Structure.h"
#include "vumo/data/detail/DataTypes.h"
#include "vumo/data/detail/ValueText.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"
#include "vumo/foundation/detail/Text.h"
#include "vumo/foundation/detail/ValueInput.h"

#include <cstdlib>
#include <locale>
#include <sstream>
#include <utility>

namespace vumo::Data
{
namespace
{
std::string unrecognizedMessage(Member::eDataType type)
{
    std::string word = detail::dataType(type).word;
    const bool isInteger = word.find("Int") != std::string::npos; // those keep their capitals
    if (!isInteger)
        word[0] = static_cast<char>(word[0] - 'A' + 'a');
    return "Data not recognized as a " + word;
}

std::string missingElementMessage(const Member* member, unsigned int i)
{
    const std::string attempt = "Trying to parse element " + std::to_string(i) + " when the member ";
    if (!member)
        return attempt + "does not exist";
    return attempt + Member::name(member) + " only has dimension " + std::to_string(Member::length(member));
}

/// The number of a character in messages: 0 after a read that failed.
long long characterNumber(std::istream& in)
{
    return in.fail() ? 0 : detail::readPosition(in) + 1;
}

int readEntries(Member::eDataType type, const std::string& text, char* value, std::string& messages)
{
    detail::ValueInput values;
    values.restart(text);
    int errorCount = 0;
    for (unsigned int i = 0; i < detail::dataType(type).entries; ++i)
    {
        std::string word;
        if (detail::readEntry(values, type, detail::entryAddress(type, value, i), word))
            continue;
        messages += detail::entryMessage(type, i, characterNumber(values.stream()), word) + "\n";
        values.stream().setstate(std::ios::failbit); // no later entry can be told from its neighbours any more
        ++errorCount;
    }
    return errorCount;
}

int storeString(const std::string& text, char* value, std::string& messages)
{
    const std::string::size_type zero = text.find('\0');
    if (zero != std::string::npos)
    {
        messages += detail::entryMessage(Member::kString, 0, static_cast<long long>(zero) + 1, "") + "\n";
        return 1; // the stored text would end there
    }
    Member::replaceString(value, text.c_str());
    return 0;
}

static_assert(sizeof(Handle) == 3 * sizeof(void*), "mapped streams keep one for each element");

bool isFilterSet(const vumo::Debug::Print& request, const std::string& name)
{
    int value = 0;
    return request.findFilter(name, value) && value != 0;
}
} // namespace

const std::string Handle::kDebugHex = "hex";
const std::string Handle::kDebugType = "type";

const vumo::ObjectCount Handle::_objectsCreated = vumo::Counted<Handle>::objectsCreated();
const vumo::ObjectCount Handle::_objectsAlive = vumo::Counted<Handle>::objectsAlive();

Handle::Handle() : Handle(Structure::create(), nullptr, kEndIndex, false) {}

Handle::Handle(const Structure& structure) : Handle(structure, nullptr)
{
    pointToData(structure.allocateDefaultChunk(), true);
}

Handle::Handle(Handle&& other) noexcept
    : Handle(other.mStructure, std::exchange(other.mData, nullptr), other.mIndex, std::exchange(other.mOwnsData, false))
{
}

Handle& Handle::operator=(const Handle& other)
{
    const bool isSameStructure = mStructure == other.mStructure;
    const bool keepsBlock = mOwnsData && mData == other.mData && isSameStructure;
    if (!keepsBlock) // else the source borrows what this handle would release
        pointToData(other.mData, false);
    mIndex = other.mIndex;
    if (isSameStructure)
        return *this;
    const Structure* const before = std::exchange(mStructure, other.mStructure);
    mStructure->refFromIterator(); // first: the old one may be all that holds the new one
    before->unrefFromIterator();
    return *this;
}

Handle& Handle::operator=(Handle&& other) noexcept
{
    if (!other.mOwnsData)
        return *this = other; // it may borrow the block that this handle owns
    Handle taken(std::move(other));
    swap(taken);
    return *this;
}

void Handle::releaseBlock()
{
    mStructure->destroyChunk(mData);
    delete[] mData;
}

bool Handle::makeUnique()
{
    if (mOwnsData || !mData)
        return false;
    pointToData(mStructure->duplicateChunk(mData), true);
    return true;
}

void Handle::swap(Handle& other) noexcept
{
    std::swap(mStructure, other.mStructure);
    std::swap(mData, other.mData);
    std::swap(mIndex, other.mIndex);
    std::swap(mOwnsData, other.mOwnsData);
}

bool Handle::setPositionByMemberName(const char* name)
{
    if (!name)
        return false;
    if (detail::equalTexts(Member::name(currentMember()), name)) // a loop over elements asks for one member only
        return true;
    mIndex = kEndIndex;
    for (unsigned int i = 0; i < mStructure->memberCount() && mIndex == kEndIndex; ++i)
    {
        if (detail::equalTexts(Member::name(mStructure->member(i)), name))
            mIndex = i;
    }
    return mIndex != kEndIndex;
}

bool Handle::isDefault() const
{
    return mData && mStructure->chunkIsDefault(mData);
}

bool Handle::isDefaultMember(const char* name) const
{
    return mData && mStructure->chunkMemberIsDefault(mData, name);
}

char* Handle::value(unsigned int i) const
{
    const Member* const member = currentMember();
    return mData && i < Member::length(member) ? mData + Member::offset(member, i) : nullptr;
}

std::string Handle::str(unsigned int i, eNumbers numbers) const
{
    const Member::eDataType type = dataType();
    const char* const source = value(i);
    if (!source)
        return detail::dataType(type).fallback;
    if (type == Member::kString)
    {
        const char* const text = loadScalar<char*>(source);
        const bool hasFirst = loadScalar<char*>(value(0)); // without a first string all are empty
        return hasFirst && text ? text : "";
    }
    detail::TextBuilder builder;
    const detail::NumberFormat format = numbers == kExact ? detail::NumberFormat::exact() : detail::NumberFormat();
    detail::appendValues(builder, format, type, source, 1);
    return std::string(builder.text());
}

int Handle::fromStr(const std::string& text, unsigned int i, std::string& errors)
{
    const Member* const member = currentMember();
    const Member::eDataType type = dataType();
    std::string messages;
    int errorCount = 1;
    // What is asked for is checked before what there is.
    if (i >= Member::length(member))
        messages = missingElementMessage(member, i) + "\n";
    else if (type >= Member::kInvalidType)
    {
        messages = "Invalid type " + std::to_string(static_cast<unsigned int>(type)) + " in structure.\n";
        errorCount = 0; // reported, but never counted
    }
    else if (!mData)
        messages = unrecognizedMessage(type) + "\n";
    else if (type == Member::kString)
        errorCount = storeString(text, value(i), messages);
    else
        errorCount = readEntries(type, text, value(i), messages);
    errors += messages;
    return errorCount;
}

bool Handle::Debug(const Handle* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<Handle>("vumo::Data::Handle", request);
    std::ostringstream line;
    line.imbue(std::locale::classic()); // the dimension is a number, too
    if (isFilterSet(request, kDebugType))
        line << Member::typeName(object->dataType()) << " ";
    const unsigned int length = object->dataLength();
    if (length == 0)
        line << "[]";
    else
        line << length << " elements: [ ";
    for (unsigned int i = 0; i < length; ++i)
        line << object->str(i) << " ";
    if (length > 0)
        line << "]";
    if (isFilterSet(request, kDebugHex))
    {
        vumo::Debug::Print bytes(line);
        line << "(" << static_cast<const void*>(object->mData) << ") ";
        for (unsigned int i = 0; object->mData && i < length; ++i)
        {
            line << " ";
            bytes.outputHexChars(Member::typeSize(object->dataType()),
                                 reinterpret_cast<const unsigned char*>(object->value(i)));
        }
    }
    request << line.str().c_str(); // in one insertion, so that it is indented once
    return true;
}

bool Handle::Debug(const Handle* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<Handle>(request);
    request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::Data
