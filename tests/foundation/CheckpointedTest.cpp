#include "vumo/foundation/Checkpointed.h"

#include "tests/support/DataFixtures.h"
#include "tests/support/Threads.h"

#include <algorithm>
#include <vector>

namespace vumo
{
namespace
{
TEST(CheckpointedTest, Stamps_FollowTheSequenceOfAFreshProcess)
{
    const unsigned long long start = Checkpointed::globalCheckpoint();
    Checkpointed a;
    EXPECT_EQ(a.checkpoint(), start + 1);
    EXPECT_EQ(Checkpointed::sClassCheckpoint(), start + 1);
    const Checkpointed b(a);
    EXPECT_EQ(b.checkpoint(), start + 3);
    EXPECT_EQ(Checkpointed::sClassCheckpoint(), start + 3);
    EXPECT_FALSE(a.changedSinceCheckpoint(start + 1));
    EXPECT_EQ(a.objectChanged(), start + 4);
    EXPECT_TRUE(a.changedSinceCheckpoint(start + 3));
    EXPECT_EQ(Checkpointed::globalChange(), start + 5);
    EXPECT_EQ(Checkpointed::sClassCheckpoint(), start + 4);
    EXPECT_FALSE(Checkpointed::sClassChangedSinceCheckpoint(start + 4));
    EXPECT_TRUE(a.classChangedSinceCheckpoint(start + 3));
    a = b;
    EXPECT_EQ(a.checkpoint(), start + 6);
    {
        const Checkpointed shortLived;
    }
    EXPECT_EQ(Checkpointed::globalCheckpoint(), start + 8);
    EXPECT_EQ(a.classCheckpoint(), start + 8);
    EXPECT_EQ(a.classChanged(), start + 9);
    EXPECT_EQ(a.checkpoint(), start + 6);
}

/// Keeps a class checkpoint of its own.
class Separate : public Checkpointed
{
public:
    unsigned long long classChanged() override { return 1000; }
};

TEST(CheckpointedTest, ObjectChangedAndAssignment_GoThroughTheVirtualClassChange)
{
    Separate object;
    EXPECT_EQ(object.objectChanged(), 1000U);
    Separate other;
    static_cast<Checkpointed&>(other) = object;
    EXPECT_EQ(other.checkpoint(), 1000U);
}

TEST(CheckpointedTest, StampsOfSeveralThreads_AreUniqueAndEndAtTheLast)
{
    constexpr unsigned int kChanges = 10000;
    const unsigned long long start = Checkpointed::globalCheckpoint();
    std::vector<std::vector<unsigned long long>> stamps(4);
    test::inThreads(4, [&](int i) {
        auto& own = stamps[static_cast<std::size_t>(i)];
        Checkpointed object;
        for (unsigned int n = 0; n < kChanges; ++n)
            own.push_back(n % 2 == 0 ? object.objectChanged() : Checkpointed(object).checkpoint());
    });
    std::vector<unsigned long long> all;
    for (const auto& own : stamps)
    {
        EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
        all.insert(all.end(), own.begin(), own.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    EXPECT_EQ(Checkpointed::globalCheckpoint(), start + 4 * (1 + 2 * kChanges + 1));
    EXPECT_EQ(Checkpointed::sClassCheckpoint(), Checkpointed::globalCheckpoint());
}

TEST(CheckpointedGoldenTest, Debug_TellsObjectAndClass)
{
    Checkpointed object;
    const std::string stamp = std::to_string(object.checkpoint());
    Checkpointed::globalChange();
    EXPECT_EQ(test::printed(&object), "Checkpoint : " + stamp + "\n");
    EXPECT_EQ(test::printed<Checkpointed>(nullptr), "Class Checkpoint  : " + stamp + "\nGlobal Checkpoint : " +
                                                        std::to_string(object.checkpoint() + 1) + "\n");
    EXPECT_EQ(test::footprintOf(&object).totalSize(), sizeof(Checkpointed));
    EXPECT_EQ(test::footprintOf<Checkpointed>(nullptr).totalSize(), 16U);
    EXPECT_EQ(test::footprintOf<Checkpointed>(nullptr).totalFragments(), 2U);
}
} // namespace
} // namespace vumo
