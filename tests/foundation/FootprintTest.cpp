#include "vumo/foundation/Footprint.h"

#include "tests/support/DataFixtures.h"
#include "vumo/foundation/Count.h"

namespace vumo::Debug
{
namespace
{
TEST(FootprintTest, ObjectsAndMembers_AddBytesAndFragments)
{
    Footprint footprint;
    footprint.addObject(&footprint, 5000000000);
    footprint.addMember(nullptr, 7);
    EXPECT_EQ(test::printed(&footprint), "Footprint : 5000000007 byte(s), 2 memory fragment(s).\n");
    EXPECT_EQ(test::footprintOf(&footprint).totalSize(), sizeof(Footprint));
    footprint.clear();
    EXPECT_EQ(test::printed(&footprint), "Footprint : 0 byte(s), 0 memory fragment(s).\n");
}

TEST(FootprintTest, Count_StartsAtZeroAndIsAssigned)
{
    Count count;
    EXPECT_EQ(count.value(), 0U);
    count = 5000000000UL;
    EXPECT_EQ(count.value(), 5000000000U);
}
} // namespace
} // namespace vumo::Debug
