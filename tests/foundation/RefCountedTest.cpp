#include "vumo/foundation/RefCounted.h"

#include "tests/support/DataFixtures.h"
#include "tests/support/Threads.h"
#include "vumo/foundation/Ref.h"

#include <atomic>
#include <vector>

namespace vumo
{
namespace
{
int theLivingNodes = 0;

/// A link of a chain: each node holds the next one.
struct Node : RefCounted
{
    explicit Node(Node* next = nullptr) : mNext(next) { ++theLivingNodes; }
    ~Node() override { --theLivingNodes; }

    Ref<Node> mNext;
};

TEST(RefCountedTest, LastUnref_DeletesAndOthersOnlyCount)
{
    auto* const object = new Node();
    EXPECT_EQ(object->refCount(), 0);
    object->unref();
    EXPECT_EQ(object->refCount(), -1);
    EXPECT_FALSE(object->isShared());
    object->ref();
    object->ref();
    EXPECT_FALSE(object->isShared());
    object->ref();
    EXPECT_TRUE(object->isShared());
    object->unref();
    EXPECT_EQ(theLivingNodes, 1);
    object->unref();
    EXPECT_EQ(theLivingNodes, 0);
}

TEST(RefCountedTest, CopiesAndAssignments_NeverTakeACount)
{
    RefCounted held;
    held.ref();
    held.ref();
    const RefCounted copy(held);
    EXPECT_EQ(copy.refCount(), 0);
    RefCounted assigned;
    assigned.ref();
    assigned = held;
    EXPECT_EQ(assigned.refCount(), 1);
    EXPECT_EQ(held.refCount(), 2);
}

TEST(RefCountedTest, ObjectsOfSeveralThreads_NeverShareACounter)
{
    constexpr int kObjects = 100000;
    std::atomic<int> wrongCounts = 0;
    test::inThreads(4, [&](int) {
        std::vector<Ref<RefCounted>> objects;
        for (int n = 0; n < kObjects; ++n)
        {
            objects.emplace_back(new RefCounted);
            if (n % 3 == 0)
                objects.pop_back(); // gives its counter to whoever is next
        }
        for (const Ref<RefCounted>& object : objects)
            wrongCounts += object->refCount() == 1 ? 0 : 1;
    });
    EXPECT_EQ(wrongCounts, 0);
}

TEST(RefCountedTest, Counting_LosesNothingAcrossThreads)
{
    RefCounted object;
    object.ref();
    test::inThreads(4, [&](int) {
        for (int n = 0; n < 20000; ++n)
        {
            object.ref();
            object.ref();
            object.unref();
        }
    });
    EXPECT_EQ(object.refCount(), 80001);
}

TEST(RefCountedTest, RefAssignment_TakesTheNewBeforeItReleasesTheOld)
{
    Ref<Node> head(new Node(new Node(new Node())));
    const Ref<Node>& itself = head;
    head = itself;
    EXPECT_EQ(theLivingNodes, 3);
    head = head->mNext; // which only the old head keeps alive
    EXPECT_EQ(theLivingNodes, 2);
    EXPECT_EQ(head->refCount(), 1);
    head = Ref<Node>();
    EXPECT_FALSE(head);
    EXPECT_EQ(theLivingNodes, 0);
}

TEST(RefCountedGoldenTest, Debug_TellsTheCountAndTheSize)
{
    RefCounted object;
    object.ref();
    EXPECT_EQ(test::printed(&object), "RefCount : 1\n");
    EXPECT_EQ(test::printed<RefCounted>(nullptr), "");
    EXPECT_EQ(test::footprintOf(&object).totalSize(), sizeof(RefCounted));
    EXPECT_EQ(test::footprintOf<RefCounted>(nullptr).totalFragments(), 0U);
}
} // namespace
} // namespace vumo
