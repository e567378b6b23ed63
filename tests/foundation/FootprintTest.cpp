#include "vumo/foundation/Footprint.h"

#include "tests/support/DataFixtures.h"

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
} // namespace
} // namespace vumo::Debug
