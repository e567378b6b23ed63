#include "vumo/data/detail/DataTypes.h"

#include "vumo/data/MemberView.h"

#include <array>
#include <type_traits>

namespace vumo::Data::detail
{
namespace
{
constexpr std::array<DataType, Member::kInvalidType + 1> allTypes()
{
    std::array<DataType, Member::kInvalidType + 1> types{};
    for (unsigned int i = 0; i < Member::kInvalidType; ++i)
        visitDataType(static_cast<Member::eDataType>(i), [&](auto layout) { types[i] = layout; });
    types[Member::kInvalidType] = {"invalid", "invalid", "", 0, 0, 0};
    return types;
}

constexpr std::array<DataType, Member::kInvalidType + 1> kTypes = allTypes();

/// Says whether views of members take each type for what the table says that it is.
constexpr bool doViewsAgree()
{
    bool agree = true;
    for (unsigned int i = 0; i < Member::kInvalidType; ++i)
    {
        visitDataType(static_cast<Member::eDataType>(i), [&](auto layout) {
            using Types = MemberTypes<typename decltype(layout)::Scalar>;
            const bool isMatrix = layout.kEntries == Types::kMatrixEntries;
            agree = agree && i == (isMatrix ? Types::kMatrix : Types::kValue) && (isMatrix || layout.kEntries == 1);
        });
    }
    return agree;
}

static_assert(doViewsAgree());
static_assert(sizeof(bool) == 1 && sizeof(char*) == 8 && alignof(double) == 8 && alignof(std::int64_t) == 8,
              "sizes and alignments are part of the interface, and elements of one layout everywhere");
} // namespace

const DataType& dataType(Member::eDataType type)
{
    return kTypes[type < Member::kInvalidType ? type : Member::kInvalidType];
}
} // namespace vumo::Data::detail
