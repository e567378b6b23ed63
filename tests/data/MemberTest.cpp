#include "vumo/data/Member.h"

#include "tests/support/DataFixtures.h"

namespace vumo::Data
{
namespace
{
using MemberTest = test::DataTest;

TEST_F(MemberTest, DataTypes_HaveTheirNumbersNamesSizesAndAlignments)
{
    struct TypeCase
    {
        unsigned int number;
        Member::eDataType type;
        const char* name;
        unsigned int size;
        unsigned int alignment;
    };
    const TypeCase cases[] = {
        {0, Member::kBoolean, "bool", 1, 1},
        {1, Member::kDouble, "double", 8, 8},
        {2, Member::kDoubleMatrix4x4, "dbl4x4", 128, 8},
        {3, Member::kFloat, "float", 4, 4},
        {4, Member::kFloatMatrix4x4, "flt4x4", 64, 4},
        {5, Member::kInt8, "int8", 1, 1},
        {6, Member::kInt16, "int16", 2, 2},
        {7, Member::kInt32, "int32", 4, 4},
        {8, Member::kInt64, "int64", 8, 8},
        {9, Member::kString, "string", 8, 8},
        {10, Member::kUInt8, "uint8", 1, 1},
        {11, Member::kUInt16, "uint16", 2, 2},
        {12, Member::kUInt32, "uint32", 4, 4},
        {13, Member::kUInt64, "uint64", 8, 8},
        {14, Member::kInvalidType, "invalid", 0, 0},
        {15, static_cast<Member::eDataType>(15), "invalid", 0, 0},
        {99, static_cast<Member::eDataType>(99), "invalid", 0, 0},
    };
    for (const TypeCase& expected : cases)
    {
        SCOPED_TRACE(expected.number);
        EXPECT_EQ(expected.type, expected.number);
        EXPECT_STREQ(Member::typeName(expected.type), expected.name);
        EXPECT_EQ(Member::typeSize(expected.type), expected.size);
        EXPECT_EQ(Member::typeAlignment(expected.type), expected.alignment);
        const bool isType = expected.number < 14;
        EXPECT_EQ(Member::typeFromName(expected.name), isType ? expected.type : Member::kInvalidType);
    }
    for (const char* name : {"Int32", "boolean", "int32 ", "int3", ""})
        EXPECT_EQ(Member::typeFromName(name), Member::kInvalidType) << name;
    EXPECT_EQ(Member::typeFromName(nullptr), Member::kInvalidType);
}

TEST_F(MemberTest, NullMembers_AnswerEveryQuestion)
{
    EXPECT_EQ(Member::length(nullptr), 0U);
    EXPECT_EQ(Member::name(nullptr), nullptr);
    EXPECT_EQ(Member::offset(nullptr), 4294967295U);
    EXPECT_EQ(Member::offset(nullptr, 3), 0U);
    EXPECT_EQ(Member::type(nullptr), Member::kInvalidType);
}

TEST_F(MemberTest, ANewMember_HasNoTypeAndLeavesTheBlockAlone)
{
    const Member member;
    EXPECT_EQ(test::printed(&member), "'' invalid[0] +0\n");
    EXPECT_EQ(test::footprintOf(&member).totalFragments(), 1U);
    const Member copy(member); // whose name is null, too
    EXPECT_TRUE(copy == member);
    char block[] = "x";
    EXPECT_TRUE(member.fillWithDefault(block));
    EXPECT_TRUE(member.constructDuplicate(block, block));
    EXPECT_TRUE(member.isDefault(block));
    EXPECT_FALSE(member.isDefault(nullptr));
    EXPECT_FALSE(member.destroy(block));
    EXPECT_STREQ(block, "x");
}

TEST_F(MemberTest, CopiesAndAssignments_OwnNamesOfTheirOwn)
{
    Member copy;
    {
        const auto structure = Structure::make("S", {{Member::kFloat, 3, "Origin"}});
        copy = *structure->member(0);
        EXPECT_TRUE(copy == *structure->member(0));
        EXPECT_TRUE(copy != Member());
    }
    const Member& itself = copy;
    copy = itself;
    EXPECT_EQ(test::printed(&copy), "'Origin' float[3] +0\n");
    EXPECT_EQ(test::footprintOf(&copy).totalSize(), sizeof(Member) + 7);
    EXPECT_EQ(test::footprintOf(&copy).totalFragments(), 2U);
}

TEST_F(MemberTest, Offsets_CountFromTheElementInWholeValues)
{
    const auto structure =
        Structure::make("S", {{Member::kDouble, 1, "a"}, {Member::kFloatMatrix4x4, 4294967295U, "b"}});
    EXPECT_EQ(Member::offset(structure->member(1), 2), 8U + 2U * 64U);
    EXPECT_EQ(Member::offset(structure->member(1), 4294967294U), 8U + 4294967294ULL * 64U);
}

TEST_F(MemberTest, IsDefault_LooksAtEveryValueOfEveryType)
{
    for (unsigned int number = 0; number < Member::kInvalidType; ++number)
    {
        const auto type = static_cast<Member::eDataType>(number);
        SCOPED_TRACE(Member::typeName(type));
        const auto structure = Structure::make("S", {{Member::kUInt8, 1, "before"}, {type, 2, "values"}});
        Handle handle(*structure);
        const Member& values = *structure->member(1);
        EXPECT_TRUE(values.isDefault(handle.data()));
        EXPECT_FALSE(values.isDefault(nullptr));

        char* const lastByte = handle.data() + Member::offset(&values, 2) - 1;
        *lastByte = 2; // true as well
        EXPECT_FALSE(values.isDefault(handle.data()));
        *lastByte = 0;
        *handle.data() = 1; // another member's
        EXPECT_TRUE(values.isDefault(handle.data()));
    }
}

TEST_F(MemberTest, IsDefault_TakesNegativeZeroButNoEmptyString)
{
    const auto structure =
        Structure::make("S", {{Member::kFloat, 1, "f"}, {Member::kDouble, 1, "d"}, {Member::kString, 2, "s"}});
    Handle handle(*structure);
    test::setText(handle, "f", "-0.0");
    test::setText(handle, "d", "-0.0");
    EXPECT_TRUE(handle.isDefault());
    test::setText(handle, "s", "");
    EXPECT_FALSE(structure->member(2)->isDefault(handle.data()));
}
} // namespace
} // namespace vumo::Data
