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
struct TypeInfo
{
    const char* name;
    unsigned int size;
    unsigned int alignment;
};

constexpr TypeInfo kTypes[] = {
    {"bool", 1, 1},  {"double", 8, 8}, {"dbl4x4", 128, 8}, {"float", 4, 4},  {"flt4x4", 64, 4},
    {"int8", 1, 1},  {"int16", 2, 2},  {"int32", 4, 4},    {"int64", 8, 8},  {"string", 8, 8},
    {"uint8", 1, 1}, {"uint16", 2, 2}, {"uint32", 4, 4},   {"uint64", 8, 8}, {"invalid", 0, 0},
};
static_assert(sizeof(char*) == 8, "a string value takes 8 bytes");

const TypeInfo& typeInfo(Member::eDataType type)
{
    return kTypes[type < Member::kInvalidType ? type : Member::kInvalidType];
}

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
    return detail::loadScalar<T>(scalar) == T();
}
} // namespace

unsigned long long Member::_objectsCreated = 0;
unsigned long long Member::_objectsAlive = 0;

Member::Member()
{
    ++_objectsCreated;
    ++_objectsAlive;
}

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

Member::~Member()
{
    --_objectsAlive;
}

bool Member::operator==(const Member& other) const
{
    return mType == other.mType && mOffset == other.mOffset && mDimension == other.mDimension &&
           detail::equalTexts(mName.get(), other.mName.get());
}

bool Member::fillWithDefault(char* data) const
{
    const unsigned long long bytes = static_cast<unsigned long long>(typeSize(mType)) * mDimension;
    if (bytes > 0)
        std::memset(data + mOffset, 0, bytes);
    return true;
}

bool Member::constructDuplicate(char* dest, const char* src) const
{
    visitStrings(*this, dest, [&](char* value) {
        const char* const original = detail::loadScalar<char*>(src + (value - dest));
        detail::storeScalar(value, detail::duplicateText(original));
    });
    return true;
}

bool Member::destroy(char* data) const
{
    if (mType >= kInvalidType)
        return false;
    visitStrings(*this, data, [](char* value) {
        std::free(detail::loadScalar<char*>(value));
        detail::storeScalar<char*>(value, nullptr);
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

unsigned long long Member::offset(const Member* member, unsigned int i)
{
    return member ? member->mOffset + static_cast<unsigned long long>(typeSize(member->mType)) * i : 0;
}

unsigned int Member::typeSize(eDataType type)
{
    return typeInfo(type).size;
}

unsigned int Member::typeAlignment(eDataType type)
{
    return typeInfo(type).alignment;
}

const char* Member::typeName(eDataType type)
{
    return typeInfo(type).name;
}

Member::eDataType Member::typeFromName(const char* name)
{
    for (unsigned int type = 0; type < kInvalidType; ++type)
    {
        if (name && std::strcmp(name, kTypes[type].name) == 0)
            return static_cast<eDataType>(type);
    }
    return kInvalidType;
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
