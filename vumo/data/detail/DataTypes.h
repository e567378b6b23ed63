#pragma once

#include "vumo/data/Member.h"
#include "vumo/data/ScalarAccess.h"

#include <cstdint>

namespace vumo::Data::detail
{
/// What is known of a data type. Its values are `entries` scalars each, one after the other.
struct DataType
{
    const char* name;     // in all text forms
    const char* word;     // in messages
    const char* fallback; // the text of a value that is not there
    unsigned int entries;
    unsigned int size; // of a value in bytes
    unsigned int alignment;
};

/// The same with the C++ type of the scalars.
template <class T, unsigned int Entries = 1>
struct ValueLayout : DataType
{
    using Scalar = T;
    static constexpr unsigned int kEntries = Entries;

    constexpr ValueLayout(const char* typeName, const char* typeWord, const char* fallbackText)
        : DataType{typeName, typeWord, fallbackText, Entries, sizeof(T) * Entries, alignof(T)}
    {
    }
};

constexpr char kZeroMatrix[] = "0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0 0.0";

/// The table of data types: calls `visit` with the `ValueLayout` of `type`; false where there is none.
template <class Visitor>
constexpr bool visitDataType(Member::eDataType type, Visitor&& visit)
{
    // clang-format off
    switch (type)
    {
    case Member::kBoolean: visit(ValueLayout<bool>("bool", "Boolean", "false")); return true;
    case Member::kDouble: visit(ValueLayout<double>("double", "Double", "0.0")); return true;
    case Member::kDoubleMatrix4x4: visit(ValueLayout<double, 16>("dbl4x4", "Double matrix", kZeroMatrix)); return true;
    case Member::kFloat: visit(ValueLayout<float>("float", "Float", "0.0")); return true;
    case Member::kFloatMatrix4x4: visit(ValueLayout<float, 16>("flt4x4", "Float matrix", kZeroMatrix)); return true;
    case Member::kInt8: visit(ValueLayout<std::int8_t>("int8", "Int8", "0")); return true;
    case Member::kInt16: visit(ValueLayout<std::int16_t>("int16", "Int16", "0")); return true;
    case Member::kInt32: visit(ValueLayout<std::int32_t>("int32", "Int32", "0")); return true;
    case Member::kInt64: visit(ValueLayout<std::int64_t>("int64", "Int64", "0")); return true;
    case Member::kString: visit(ValueLayout<char*>("string", "String", "")); return true;
    case Member::kUInt8: visit(ValueLayout<std::uint8_t>("uint8", "UInt8", "0")); return true;
    case Member::kUInt16: visit(ValueLayout<std::uint16_t>("uint16", "UInt16", "0")); return true;
    case Member::kUInt32: visit(ValueLayout<std::uint32_t>("uint32", "UInt32", "0")); return true;
    case Member::kUInt64: visit(ValueLayout<std::uint64_t>("uint64", "UInt64", "0")); return true;
    case Member::kInvalidType: break;
    }
    // clang-format on
    return false;
}

/// The row of a type; that of `kInvalidType` for any number that is no type.
const DataType& dataType(Member::eDataType type);
} // namespace vumo::Data::detail
