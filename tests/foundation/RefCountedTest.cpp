#include "vumo/foundation/RefCounted.h"

#include "tests/support/DataFixtures.h"

#include <thread>
#include <vector>

namespace vumo
{
namespace
{
class Counted : public RefCounted
{
public:
    explicit Counted(bool& isAlive) : mIsAlive(isAlive) { mIsAlive = true; }
    ~Counted() override { mIsAlive = false; }

private:
    bool& mIsAlive;
};

TEST(RefCountedTest, LastUnref_DeletesAndOthersOnlyCount)
{
    bool isAlive = false;
    auto* const object = new Counted(isAlive);
    EXPECT_EQ(object->refCount(), 0);
    EXPECT_FALSE(object->isShared());
    object->unref();
    EXPECT_EQ(object->refCount(), -1);
    EXPECT_FALSE(object->isShared());
    object->ref();
    object->ref();
    EXPECT_FALSE(object->isShared());
    object->ref();
    EXPECT_TRUE(object->isShared());
    object->unref();
    EXPECT_TRUE(isAlive);
    object->unref();
    EXPECT_FALSE(isAlive);
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

TEST(RefCountedTest, Counting_LosesNothingAcrossThreads)
{
    RefCounted object;
    object.ref();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back([&] {
            for (int n = 0; n < 20000; ++n)
            {
                object.ref();
                object.ref();
                object.unref();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(object.refCount(), 80001);
}

TEST(RefCountedTest, Debug_TellsTheCountAndTheSize)
{
    RefCounted object;
    object.ref();
    EXPECT_EQ(test::printed(&object), "RefCount : 1\n");
    EXPECT_EQ(test::printed<RefCounted>(nullptr), "");
    EXPECT_EQ(test::footprintOf(&object).totalSize(), sizeof(RefCounted));
    EXPECT_EQ(test::footprintOf(&object).totalFragments(), 1U);
    EXPECT_EQ(test::footprintOf<RefCounted>(nullptr).totalFragments(), 0U);
}
} // namespace
} // namespace vumo
