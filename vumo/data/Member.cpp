#include "vumo/data/Member.h"

#include "vumo/data/detail/DataTypes.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/Text.h"

#include <cstdlib>
#include <cstring>

namespace vumo::Data
{
namespace
{
/// Calls `visit` with the address of each string of `member` in the block at `data`.
template <class Visitor>
void visitStrings(const Member& member, char* data, Visitor&& visit)
{
    if (Member::type(&member) != Member::kString)
        return;
    for (unsigned int i = 0; i < Member::length(&member); ++i)
        visit(data + Member::offset(&member, i));
}

template <class T>
bool isZero(const char* scalar)
{
    return loadScalar<T>(scalar) == T(); // not the bits: -0.0 is a default, too
}
} // namespace

const vumo::ObjectCount Member::_objectsCreated = vumo::Counted<Member>::objectsCreated();
const vumo::ObjectCount Member::_objectsAlive = vumo::Counted<Member>::objectsAlive();

Member::Member(const Member& other) : Member()
{
    *this = other;
}

Member& Member::operator=(const Member& other)
{
    if (this == &other)
        return *this;
    mName.reset(detail::duplicateText(other.mName.get()));
    mType = other.mType;
    mDimension = other.mDimension;
    mOffset = other.mOffset;
    return *this;
}

bool Member::operator==(const Member& other) const
{
    return mType == other.mType && mOffset == other.mOffset && mDimension == other.mDimension &&
           detail::equalTexts(mName.get(), other.mName.get());
}

bool Member::fillWithDefault(char* data) const
{
    const unsigned long long bytes = static_cast<unsigned long long>(typeSize(mType)) * mDimension;
    if (bytes > 0) // else the block may be null, which memset must not be given
        std::memset(data + mOffset, 0, bytes);
    return true;
}

bool Member::constructDuplicate(char* dest, const char* src) const
{
    visitStrings(*this, dest, [&](char* value) {
        const char* const original = loadScalar<char*>(src + (value - dest)); // at the same place of its block
        storeScalar(value, detail::duplicateText(original));
    });
    return true;
}

bool Member::destroy(char* data) const
{
    if (mType >= kInvalidType)
        return false;
    visitStrings(*this, data, [](char* value) {
        std::free(loadScalar<char*>(value));
        storeScalar<char*>(value, nullptr);
    });
    return true;
}

bool Member::isDefault(const char* data) const
{
    if (!data)
        return false;
    bool allDefault = true;
    detail::visitDataType(mType, [&](auto layout) {
        using Scalar = typename decltype(layout)::Scalar;
        const unsigned long long count = static_cast<unsigned long long>(mDimension) * layout.kEntries;
        for (unsigned long long i = 0; i < count && allDefault; ++i)
            allDefault = isZero<Scalar>(data + mOffset + i * sizeof(Scalar));
    });
    return allDefault;
}

void Member::replaceString(void* string, const char* text)
{
    replaceString(string, OwnedText(detail::duplicateText(text))); // copied before the old one is freed
}

void Member::replaceString(void* string, OwnedText text)
{
    std::free(loadScalar<char*>(string));
    storeScalar(string, text.release());
}

unsigned long long Member::offset(const Member* member, unsigned int i)
{
    return member ? member->mOffset + static_cast<unsigned long long>(typeSize(member->mType)) * i : 0;
}

unsigned int Member::typeSize(eDataType type)
{
    return detail::dataType(type).size;
}

unsigned int Member::typeAlignment(eDataType type)
{
    return detail::dataType(type).alignment;
}

const char* Member::typeName(eDataType type)
{
    return detail::dataType(type).name;
}

Member::eDataType Member::typeFromName(const char* name)
{
    unsigned int type = 0;
    while (type < kInvalidType && !detail::equalTexts(name, typeName(static_cast<eDataType>(type))))
        ++type;
    return static_cast<eDataType>(type);
}

bool Member::Debug(const Member* object, vumo::Debug::Print& request)
{
    if (object)
    {
        request << "'" << (object->mName ? object->mName.get() : "") << "' " << typeName(object->mType) << "["
                << object->mDimension << "] +" << object->mOffset << "\n";
    }
    return true;
}

bool Member::Debug(const Member* object, vumo::Debug::Footprint& request)
{
    if (object)
    {
        request.addObject(object, sizeof(*object));
        if (object->mName)
            request.addMember(object->mName.get(), std::strlen(object->mName.get()) + 1);
    }
    return true;
}
} // namespace vumo::Data
