#pragma once

#include "vumo/data/Member.h"
#include "vumo/data/ScalarAccess.h"

#include <cstdint>

namespace vumo::Data::detail
{
/// How a value of one data type is stored: `kEntries` scalars of type `Scalar`, one after the other.
template <class T, unsigned int Entries = 1>
struct ValueLayout
{
    using Scalar = T;
    static constexpr unsigned int kEntries = Entries;
};

/// Calls `visit` with the `ValueLayout` of `type`; false where there is none.
template <class Visitor>
bool visitDataType(Member::eDataType type, Visitor&& visit)
{
    // clang-format off
    switch (type)
    {
    case Member::kBoolean: visit(ValueLayout<bool>()); return true;
    case Member::kDouble: visit(ValueLayout<double>()); return true;
    case Member::kDoubleMatrix4x4: visit(ValueLayout<double, 16>()); return true;
    case Member::kFloat: visit(ValueLayout<float>()); return true;
    case Member::kFloatMatrix4x4: visit(ValueLayout<float, 16>()); return true;
    case Member::kInt8: visit(ValueLayout<std::int8_t>()); return true;
    case Member::kInt16: visit(ValueLayout<std::int16_t>()); return true;
    case Member::kInt32: visit(ValueLayout<std::int32_t>()); return true;
    case Member::kInt64: visit(ValueLayout<std::int64_t>()); return true;
    case Member::kString: visit(ValueLayout<char*>()); return true;
    case Member::kUInt8: visit(ValueLayout<std::uint8_t>()); return true;
    case Member::kUInt16: visit(ValueLayout<std::uint16_t>()); return true;
    case Member::kUInt32: visit(ValueLayout<std::uint32_t>()); return true;
    case Member::kUInt64: visit(ValueLayout<std::uint64_t>()); return true;
    case Member::kInvalidType: break;
    }
    // clang-format on
    return false;
}

using Data::loadScalar;
using Data::storeScalar;
} // namespace vumo::Data::detail
