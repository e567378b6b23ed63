#pragma once

#include "vumo/data/Member.h"
#include "vumo/data/MemberView.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Counted.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

namespace vumo::Data
{
/// Typed access to the values of one element: a structure, an element's data block laid out by it, and
/// a current member.
///
/// A handle has no data, borrows its block (it points into a stream, which must outlive it) or owns it
/// (it made or copied the block itself). A copy never owns: it borrows the block of the source, which
/// must outlive it. It references the structure for as long as it lives, so a structure that nobody
/// else holds dies with its last handle: ref() a new structure before making handles on it.
///
/// Each thread needs handles of its own. Two that borrow one block may read it at once; the one that writes locks.
class VUMO_EXPORT Handle : private Counted<Handle>
{
public:
    /// On a new, empty structure of its own, without data.
    Handle();

    /// On the first member, owning a new block of default values; without data if the structure's size is 0.
    explicit Handle(const Structure& structure);

    /// On the first member, borrowing `data`, which may be null.
    Handle(const Structure& structure, void* data)
        : Handle(&structure, static_cast<char*>(data), structure.empty() ? kEndIndex : 0, false)
    {
    }

    Handle(const Handle& other) : Handle(other.mStructure, other.mData, other.mIndex, false) {}

    /// Takes the block with its ownership; `other` is left without data, on the same structure and member.
    Handle(Handle&& other) noexcept;

    /// Releases an owned block, unless the source borrows that very block: then it is kept, and owned. (A source
    /// that borrows it on another structure is misuse.)
    Handle& operator=(const Handle& other);
    Handle& operator=(Handle&& other) noexcept;

    ~Handle()
    {
        if (mOwnsData)
            releaseBlock();
        mStructure->unrefFromIterator();
    }

    /// Releases an owned block, then takes `data`; an owned block comes from array new.
    void pointToData(char* data, bool owns)
    {
        if (mOwnsData && data != mData)
            releaseBlock();
        mData = data;
        mOwnsData = owns && data;
    }

    /// Replaces a borrowed block by a deep copy of its own. False, with nothing done, when the handle
    /// owns its block already or has no data.
    bool makeUnique();

    void swap(Handle& other) noexcept;

    /// False, with the position at the end, when there is no such member. True when the position is `i` already,
    /// 4294967295 at the end included.
    bool setPositionByMemberIndex(unsigned int i)
    {
        if (mIndex == i)
            return true;
        mIndex = mStructure->member(i) ? i : kEndIndex;
        return mIndex != kEndIndex;
    }

    /// False, with the position at the end, when no member has that name. Null is false and moves nothing.
    bool setPositionByMemberName(const char* name);

    /// The position of the current member, counted from 0; 4294967295 at the end.
    unsigned int memberIndex() const { return mIndex; }

    /// The current member's type and dimension; `kInvalidType` and 0 at the end.
    Member::eDataType dataType() const { return Member::type(currentMember()); }
    unsigned int dataLength() const { return Member::length(currentMember()); }

    /// Says whether the handle is on that very structure, not one equal to it.
    bool usesStructure(const Structure& structure) const { return mStructure == &structure; }

    bool hasData() const { return mData != nullptr; }
    bool ownsData() const { return mOwnsData; }

    /// The element's data block or null; borrowed.
    char* data() const { return mData; }

    bool isDefault() const;
    bool isDefaultMember(const char* name) const;

    /// The values of the current member, as many as its dimension, to be read and (not of a const handle) set wherever
    /// they lie. T is their type; a matrix is 16 values of its entries' type, and strings are seen as `char*`: see
    /// `MemberView`. No values without data, at the end, or when the member is of another type. Borrows the block.
    template <class T>
    typename MemberView<T>::Values values()
    {
        return valuesOf<T>();
    }

    template <class T>
    typename MemberView<ReadOnlyValue<T>>::Values values() const
    {
        return valuesOf<ReadOnlyValue<T>>();
    }

    /// The i-th of them, empty where there is none. A `std::string` is a copy of the text, empty for a null string;
    /// a `const char*` is borrowed.
    template <class T>
    std::optional<T> get(unsigned int i = 0) const
    {
        using Stored = std::conditional_t<std::is_same_v<T, std::string>, const char*, T>;
        const auto present = values<Stored>();
        if (i >= present.size())
            return std::nullopt;
        if constexpr (std::is_same_v<T, std::string>)
            return present[i] ? T(present[i]) : T();
        else
            return present[i];
    }

    /// Stores the i-th of them. False, with nothing changed, where there is none: types are not converted, so a number
    /// must have the member's own type. A text is copied in place of the one before, which is freed; it is refused
    /// when it holds a zero byte, at which it would end. A null text is stored as null.
    template <class T>
    bool set(unsigned int i, const T& value)
    {
        const auto present = values<T>();
        if (i >= present.size())
            return false;
        present.set(i, value);
        return true;
    }

    bool set(unsigned int i, const char* text) { return set<char*>(i, const_cast<char*>(text)); }

    bool set(unsigned int i, const std::string& text)
    {
        return text.find('\0') == std::string::npos && set(i, text.c_str());
    }

    /// Each gives the first of the current member's values inside the block; null without data, at the
    /// end, or when the member is not of that type. A matrix is 16 entries, row after row.
    ///
    /// The address may be misaligned for the type when the structure's layout makes it so; memcpy is
    /// then the way to move a value. A string may be null, and is so by default. To write one, free() the
    /// old text and store a new one made by strdup. get() and set() see to both.
    bool* asBoolean() { return static_cast<bool*>(asType(Member::kBoolean)); }
    double* asDouble() { return static_cast<double*>(asType(Member::kDouble)); }
    double* asDoubleMatrix4x4() { return static_cast<double*>(asType(Member::kDoubleMatrix4x4)); }
    float* asFloat() { return static_cast<float*>(asType(Member::kFloat)); }
    float* asFloatMatrix4x4() { return static_cast<float*>(asType(Member::kFloatMatrix4x4)); }
    std::int8_t* asInt8() { return static_cast<std::int8_t*>(asType(Member::kInt8)); }
    std::int16_t* asInt16() { return static_cast<std::int16_t*>(asType(Member::kInt16)); }
    std::int32_t* asInt32() { return static_cast<std::int32_t*>(asType(Member::kInt32)); }
    std::int64_t* asInt64() { return static_cast<std::int64_t*>(asType(Member::kInt64)); }
    char** asString() { return static_cast<char**>(asType(Member::kString)); }
    std::uint8_t* asUInt8() { return static_cast<std::uint8_t*>(asType(Member::kUInt8)); }
    std::uint16_t* asUInt16() { return static_cast<std::uint16_t*>(asType(Member::kUInt16)); }
    std::uint32_t* asUInt32() { return static_cast<std::uint32_t*>(asType(Member::kUInt32)); }
    std::uint64_t* asUInt64() { return static_cast<std::uint64_t*>(asType(Member::kUInt64)); }

    void* asType(Member::eDataType type)
    {
        const Member* const member = mData ? currentMember() : nullptr;
        const bool isOfType = member && Member::type(member) == type && type < Member::kInvalidType;
        return isOfType ? mData + Member::offset(member) : nullptr;
    }

    /// The text of the i-th value of the current member, a fallback such as "0" when there is no such
    /// value. Numbers have six significant digits, unless they are to be exact; a string is written as it is, without
    /// quotes; a matrix is 16 numbers separated by blanks.
    std::string str(unsigned int i, eNumbers numbers = kSixDigits) const;

    /// Parses `text` into the i-th value of the current member. Returns the number of errors, 0 when the
    /// value was stored, and appends a line for each to `errors`. A number of a type wider than 16 bits
    /// that is refused still leaves what could be read; any other value is then left alone. A string is
    /// stored as it stands and replaces, and frees, the one before it.
    int fromStr(const std::string& text, unsigned int i, std::string& errors);

    /// One line about the current member, without a newline. Honours the filters kDebugHex and kDebugType.
    static bool Debug(const Handle* object, vumo::Debug::Print& request);
    static bool Debug(const Handle* object, vumo::Debug::Footprint& request);

    /// Names of filters that ask the debug line for the raw bytes and for the type, when not 0.
    static const std::string kDebugHex;
    static const std::string kDebugType;

    static const ObjectCount _objectsCreated;
    static const ObjectCount _objectsAlive;

private:
    static constexpr unsigned int kEndIndex = 0xFFFFFFFF;

    Handle(const Structure* structure, char* data, unsigned int index, bool owns)
        : mStructure(structure),
          mData(data),
          mIndex(index),
          mOwnsData(owns)
    {
        mStructure->refFromIterator();
    }

    const Member* currentMember() const { return mStructure->member(mIndex); }

    template <class T>
    typename MemberView<T>::Values valuesOf() const
    {
        const Member* const member = mData ? currentMember() : nullptr;
        const unsigned int count = MemberTypes<std::remove_const_t<T>>::valueCount(member);
        return typename MemberView<T>::Values(count > 0 ? mData + Member::offset(member) : nullptr, count);
    }

    /// The address of the i-th value of the current member; null when there is none.
    char* value(unsigned int i) const;

    void releaseBlock();

    // A StructureIterator taken apart, so that it and the flag share eight bytes: streams keep a handle per element.
    const Structure* mStructure; // never null; referenced as an iterator does
    char* mData;
    unsigned int mIndex; // of the current member
    bool mOwnsData;      // never without data
};
} // namespace vumo::Data
