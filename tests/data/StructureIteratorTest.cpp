#include "vumo/data/StructureIterator.h"

#include "tests/support/DataFixtures.h"

namespace vumo
{
namespace Data
{
namespace
{
class StructureIteratorTest : public test::DataTest
{
};

TEST_F(StructureIteratorTest, Walk_VisitsMembersInOrderAndStaysAtTheEnd)
{
    const auto structure = test::recordStructure();
    std::string names;
    for (const Member& member : *structure)
        names += std::string(Member::name(&member)) + " ";
    EXPECT_EQ(names, "number label flag ");

    StructureIterator position = structure->end();
    EXPECT_FALSE(position.valid());
    EXPECT_TRUE(++position == structure->end());
    EXPECT_EQ(position.index(), 4294967295U);
    const Ref<Structure> empty(Structure::create());
    EXPECT_TRUE(empty->begin() == empty->end());
    EXPECT_TRUE(empty->end() != structure->end());
    EXPECT_TRUE(structure->begin() != structure->end());
}

TEST_F(StructureIteratorTest, Postfix_LeavesTheIteratorWhereItIs)
{
    const auto structure = test::recordStructure();
    StructureIterator position = structure->begin();
    const StructureIterator returned = position++;
    EXPECT_EQ(position.index(), 0U);
    EXPECT_TRUE(returned == position);
    EXPECT_EQ((++position).index(), 1U);
    EXPECT_STREQ(Member::name(&*position), "label");
}

TEST_F(StructureIteratorTest, Dereferencing_ThrowsWhereNoMemberIs)
{
    const auto structure = test::recordStructure();
    StructureIterator end = structure->end();
    const StructureIterator constEnd = end;
    EXPECT_EQ(test::thrownBy([&] { *end; }), "out_of_range: Member");
    EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: Member");
    EXPECT_EQ(test::thrownBy([&] { *constEnd; }), "out_of_range: Const Member");
    EXPECT_EQ(test::thrownBy([&] { constEnd.operator->(); }), "out_of_range: Const Member");

    StructureIterator third = structure->begin();
    ++third;
    ++third;
    *structure = *test::heldStructure("Short", {{Member::kInt8, 1, "a"}});
    EXPECT_EQ(test::thrownBy([&] { *third; }), "out_of_range: Member");
}

TEST_F(StructureIteratorTest, Iterators_KeepTheirStructureAlive)
{
    StructureIterator position;
    EXPECT_FALSE(position.valid());
    {
        const auto structure = test::recordStructure();
        position = structure->begin();
        const StructureIterator copy(position);
        EXPECT_EQ(structure->refCount(), 3);
    }
    EXPECT_EQ(position.structure()->refCount(), 1);
    const StructureIterator& itself = position;
    position = itself;
    EXPECT_STREQ(position.structure()->name(), "Record");
}
} // namespace
} // namespace Data
} // namespace vumo
