#pragma once

#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/foundation/OwnedText.h"

namespace vumo::Data
{
/// One field of a `Structure`: a name, a data type, how many values of that type it holds, and where
/// in an element's data block the first of them lies.
///
/// The members of a structure are made by `Structure::addMember`; a Member on its own is an empty record.
class VUMO_EXPORT Member : private Counted<Member>
{
public:
    /// The data types; their numbers are part of the interface. A matrix is 16 entries, row after row.
    /// A string is a `char*` to a zero-terminated text of its own, made by `strdup`, or null.
    enum eDataType : unsigned int
    {
        kBoolean,
        kDouble,
        kDoubleMatrix4x4,
        kFloat,
        kFloatMatrix4x4,
        kInt8,
        kInt16,
        kInt32,
        kInt64,
        kString,
        kUInt8,
        kUInt16,
        kUInt32,
        kUInt64,
        kInvalidType
    };

    Member() = default;
    Member(const Member& other);
    Member& operator=(const Member& other);

    bool operator==(const Member& other) const;
    bool operator!=(const Member& other) const { return !(*this == other); }

    /// The following take an element's data block, from its start, and treat the values of this member
    /// in it. A member of invalid type leaves the block alone.

    /// Sets each value to its default: zero bits, for a string null. What was there is not released.
    bool fillWithDefault(char* data) const;

    /// Makes `dest`, a byte-wise copy of `src`, independent of it by copying the strings.
    bool constructDuplicate(char* dest, const char* src) const;

    /// Frees the strings and sets them to null. False for an invalid type.
    bool destroy(char* data) const;

    /// Says whether every value is the default one; false for null data. -0.0 is a default value, an
    /// empty string is not.
    bool isDefault(const char* data) const;

    /// Puts a copy of `text`, or null, in place of the string value at `string`, which is released. `text` may be a
    /// part of it. Throws `std::bad_alloc`.
    static void replaceString(void* string, const char* text);

    /// The same with a text that is taken over. Throws nothing.
    static void replaceString(void* string, OwnedText text);

    /// The following accept null and then give 0, null, 4294967295 or `kInvalidType`.

    static unsigned int length(const Member* member) { return member ? member->mDimension : 0; }

    /// Borrowed from the member.
    static const char* name(const Member* member) { return member ? member->mName.get() : nullptr; }

    /// In bytes from the start of the element's data block.
    static unsigned long long offset(const Member* member) { return member ? member->mOffset : kNoOffset; }

    /// The offset of the i-th value, 0 for null; `i` is not checked.
    static unsigned long long offset(const Member* member, unsigned int i);
    static eDataType type(const Member* member) { return member ? member->mType : kInvalidType; }

    /// In bytes, of one value; 0 for the invalid type and for any number that is no type.
    static unsigned int typeSize(eDataType type);
    static unsigned int typeAlignment(eDataType type);

    /// The name used in all text forms, such as "int32"; "invalid" for any number that is no type.
    static const char* typeName(eDataType type);

    /// The type of exactly that name, else `kInvalidType`; null is no type's name.
    static eDataType typeFromName(const char* name);

    static bool Debug(const Member* object, vumo::Debug::Print& request);
    static bool Debug(const Member* object, vumo::Debug::Footprint& request);

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    friend class Structure; // fills the members that it owns

    static constexpr unsigned long long kNoOffset = 0xFFFFFFFF;

    eDataType mType = kInvalidType;
    OwnedText mName; // or null
    unsigned int mDimension = 0;
    unsigned long long mOffset = 0;
};
} // namespace vumo::Data
