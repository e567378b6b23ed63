#pragma once

#include "vumo/data/Member.h"
#include "vumo/data/ScalarAccess.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace vumo::Data
{
/// Which members hold values of a C++ type: those of `kValue` one each, those of `kMatrix`, if valid, 16 each.
template <class T>
struct MemberTypes;

// clang-format off
/// The table's row of one C++ type.
template <Member::eDataType Value, Member::eDataType Matrix = Member::kInvalidType>
struct MemberTypesAre
{
    static constexpr Member::eDataType kValue = Value;
    static constexpr Member::eDataType kMatrix = Matrix;
    static constexpr unsigned int kMatrixEntries = 16;

    /// How many values of the C++ type an element has in that member; 0 for null and for members of other types.
    static unsigned int valueCount(const Member* member)
    {
        const Member::eDataType type = Member::type(member);
        if (type == Member::kInvalidType) // which also stands where a C++ type has no matrix
            return 0;
        if (type == Matrix)
            return kMatrixEntries * Member::length(member);
        return type == Value ? Member::length(member) : 0;
    }
};

template <> struct MemberTypes<bool> : MemberTypesAre<Member::kBoolean> {};
template <> struct MemberTypes<double> : MemberTypesAre<Member::kDouble, Member::kDoubleMatrix4x4> {};
template <> struct MemberTypes<float> : MemberTypesAre<Member::kFloat, Member::kFloatMatrix4x4> {};
template <> struct MemberTypes<std::int8_t> : MemberTypesAre<Member::kInt8> {};
template <> struct MemberTypes<std::int16_t> : MemberTypesAre<Member::kInt16> {};
template <> struct MemberTypes<std::int32_t> : MemberTypesAre<Member::kInt32> {};
template <> struct MemberTypes<std::int64_t> : MemberTypesAre<Member::kInt64> {};
template <> struct MemberTypes<char*> : MemberTypesAre<Member::kString> {};
template <> struct MemberTypes<const char*> : MemberTypesAre<Member::kString> {};
template <> struct MemberTypes<std::uint8_t> : MemberTypesAre<Member::kUInt8> {};
template <> struct MemberTypes<std::uint16_t> : MemberTypesAre<Member::kUInt16> {};
template <> struct MemberTypes<std::uint32_t> : MemberTypesAre<Member::kUInt32> {};
template <> struct MemberTypes<std::uint64_t> : MemberTypesAre<Member::kUInt64> {};
// clang-format on

/// The same values, to be read only.
template <class T>
using ReadOnlyValue = std::conditional_t<std::is_pointer_v<T>, const char*, const T>;

/// The values of one member in all elements of a dense stream, to be read and written in tight loops.
///
/// T is the type of a value: `float`, or `const float` to read only. A matrix is 16 values of its entries' type, row
/// after row; strings are seen as `char*`, or `const char*` to read only, and are null by default. Values are moved
/// with memcpy, so it does not matter that a structure's layout may misalign them.
///
///     MemberView<float> origins = stream.memberView<float>("Origin");
///     for (auto origin : origins)
///         origin.set(2, origin[2] + 1.0F); // up
///
/// Borrows the elements. Valid until the stream grows, is cleared, moves to other storage or is made unique, and until
/// the last stream that shares its elements is gone. A stream without a block, one in mapped storage, a name that no
/// member has and a member of another type all give an empty view.
template <class T>
class MemberView
{
    static constexpr bool kIsString = std::is_same_v<std::remove_const_t<T>, char*> || std::is_same_v<T, const char*>;
    static constexpr bool kIsConst = std::is_const_v<T> || std::is_same_v<T, const char*>;

public:
    /// What is read and what is set; a string is borrowed when read and copied when set.
    using Value = std::conditional_t<kIsString, const char*, std::remove_const_t<T>>;
    using Byte = std::conditional_t<kIsConst, const char, char>;

    /// The values of one element.
    class Values
    {
    public:
        Values(Byte* data, unsigned int count) : mData(data), mCount(count) {}

        unsigned int size() const { return mCount; }

        /// `i` is not checked.
        Value operator[](unsigned int i) const { return loadScalar<Value>(mData + i * sizeof(Value)); }

        /// Replaces, and frees, the string before where values are strings.
        void set(unsigned int i, Value value) const
        {
            static_assert(!kIsConst, "a view of const values is for reading");
            if constexpr (kIsString)
                Member::replaceString(mData + i * sizeof(Value), value);
            else
                storeScalar<Value>(mData + i * sizeof(Value), value);
        }

        /// Copies all of them to, or from, an array.
        void get(Value* values) const
        {
            for (unsigned int i = 0; i < mCount; ++i)
                values[i] = (*this)[i];
        }

        /// None of `values` may be a string of this element.
        void set(const Value* values) const
        {
            for (unsigned int i = 0; i < mCount; ++i)
                set(i, values[i]);
        }

    private:
        Byte* mData;
        unsigned int mCount;
    };

    /// Walks the elements.
    class Iterator
    {
    public:
        Iterator(Byte* data, std::size_t stride, unsigned int valueCount)
            : mData(data),
              mStride(stride),
              mValueCount(valueCount)
        {
        }

        Values operator*() const { return Values(mData, mValueCount); }

        Iterator& operator++()
        {
            mData += mStride;
            return *this;
        }

        bool operator==(const Iterator& other) const { return mData == other.mData; }
        bool operator!=(const Iterator& other) const { return mData != other.mData; }

    private:
        Byte* mData;
        std::size_t mStride;
        unsigned int mValueCount;
    };

    /// Empty.
    MemberView() = default;

    /// Of `count` elements, `stride` bytes apart, with `valueCount` values each; the first of all lies at `first`.
    MemberView(Byte* first, std::size_t stride, unsigned int valueCount, unsigned int count)
        : mData(first),
          mStride(stride),
          mValueCount(valueCount),
          mCount(count)
    {
    }

    /// The number of elements.
    unsigned int size() const { return mCount; }
    bool empty() const { return mCount == 0; }

    /// How many values each element has: the member's dimension, for matrices times 16.
    unsigned int valuesPerElement() const { return mValueCount; }

    /// The address of the first value of the first element, which may be misaligned; null when the view is empty.
    Byte* data() const { return mData; }

    /// From an element's values to the next one's, in bytes.
    std::size_t stride() const { return mStride; }

    /// The values of the i-th element; `i` is not checked.
    Values operator[](unsigned int i) const { return Values(mData + i * mStride, mValueCount); }

    /// The k-th value of the i-th element; neither is checked.
    Value get(unsigned int i, unsigned int k = 0) const { return (*this)[i][k]; }
    void set(unsigned int i, Value value) const { (*this)[i].set(0, value); }
    void set(unsigned int i, unsigned int k, Value value) const { (*this)[i].set(k, value); }

    Iterator begin() const { return Iterator(mData, mStride, mValueCount); }
    Iterator end() const { return Iterator(mData + mCount * mStride, mStride, mValueCount); }

private:
    Byte* mData = nullptr;
    std::size_t mStride = 0;
    unsigned int mValueCount = 0;
    unsigned int mCount = 0;
};
} // namespace vumo::Data
