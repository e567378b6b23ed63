#pragma once

#include "vumo/data/Member.h"

#include <pybind11/numpy.h>

#include <cstdint>
#include <vector>

/// Calls `visit` with a value of the C++ type of the numbers of such members; not for strings.
template <class Visitor>
void visitNumbers(vumo::Data::Member::eDataType type, Visitor&& visit)
{
    using vumo::Data::Member;
    // clang-format off
    switch (type)
    {
    case Member::kBoolean: return visit(false);
    case Member::kDouble:
    case Member::kDoubleMatrix4x4: return visit(0.0);
    case Member::kFloat:
    case Member::kFloatMatrix4x4: return visit(0.0F);
    case Member::kInt8: return visit(std::int8_t{0});
    case Member::kInt16: return visit(std::int16_t{0});
    case Member::kInt32: return visit(std::int32_t{0});
    case Member::kInt64: return visit(std::int64_t{0});
    case Member::kUInt8: return visit(std::uint8_t{0});
    case Member::kUInt16: return visit(std::uint16_t{0});
    case Member::kUInt32: return visit(std::uint32_t{0});
    case Member::kUInt64: return visit(std::uint64_t{0});
    case Member::kString:
    case Member::kInvalidType: break;
    }
    // clang-format on
}

/// The shape of an array of the member's values in `count` elements: (count,), with the member's dimension after it
/// where that is not 1, and 4, 4 for matrices.
inline std::vector<pybind11::ssize_t> shapeOf(const vumo::Data::Member& member, std::size_t count)
{
    using vumo::Data::Member;
    std::vector<pybind11::ssize_t> shape{static_cast<pybind11::ssize_t>(count)};
    if (Member::length(&member) != 1)
        shape.push_back(Member::length(&member));
    const Member::eDataType type = Member::type(&member);
    if (type == Member::kDoubleMatrix4x4 || type == Member::kFloatMatrix4x4)
        shape.insert(shape.end(), {4, 4});
    return shape;
}
