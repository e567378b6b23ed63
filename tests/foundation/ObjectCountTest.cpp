#include "vumo/foundation/ObjectCount.h"

#include "tests/support/Allocations.h"
#include "tests/support/DataFixtures.h"
#include "tests/support/Threads.h"
#include "vumo/data/IndexString.h"

#include <algorithm>
#include <optional>

namespace vumo::Data
{
namespace
{
/// Counted before the program begins, and after all that it keeps for its threads has gone.
const Index theStaticIndex = IndexString("static");

TEST(ObjectCountTest, Counts_AreNumbersInEveryExpression)
{
    const auto before = Index::_objectsAlive; // not a second name for what goes on counting
    auto created = Index::_objectsCreated;
    const Index index = 1;
    EXPECT_EQ(Index::_objectsAlive, before + 1);
    EXPECT_EQ(Index::_objectsAlive - before, 1U);
    EXPECT_EQ(2 * Index::_objectsCreated, 2 * created + 2);
    EXPECT_TRUE(before < Index::_objectsAlive && Index::_objectsAlive > 0 && 0U != Index::_objectsAlive);
    EXPECT_FALSE(!Index::_objectsAlive);
    EXPECT_EQ(std::max(before, Index::_objectsAlive), before + 1);
    const unsigned long long converted = Index::_objectsCreated;
    EXPECT_EQ(true ? Index::_objectsCreated : 0ULL, converted);
    std::ostringstream out;
    out << Index::_objectsCreated;
    EXPECT_EQ(out.str(), std::to_string(converted));
    created = Index::_objectsCreated;
    const Index second = 2;
    EXPECT_EQ(created, converted);
    EXPECT_EQ(Index::_objectsCreated, converted + 1);
}

TEST(ObjectCountTest, Counting_LosesNothingAcrossThreads)
{
    constexpr int kThreads = 8;
    constexpr unsigned int kObjects = 20000;
    const auto alive = Index::_objectsAlive;
    const auto created = Index::_objectsCreated;
    std::vector<std::vector<Index>> kept(kThreads);
    const auto everMore = [&, last = created]() mutable { return std::exchange(last, Index::_objectsCreated) <= last; };
    std::atomic<int> wrongSums = 0;
    test::inThreads(kThreads, [&](int i) {
        auto growing = everMore;
        for (unsigned int n = 0; n < kObjects; ++n)
        {
            kept[static_cast<std::size_t>(i)].emplace_back(n);
            if (n % 1000 == 0)
                wrongSums += growing() && Index::_objectsAlive < alive + 8ULL * kThreads * kObjects ? 0 : 1;
        }
    });
    EXPECT_EQ(wrongSums, 0); // above all none that wraps
    EXPECT_GE(Index::_objectsCreated, created + kThreads * kObjects);
    EXPECT_EQ(Index::_objectsAlive, alive + kThreads * kObjects);
    test::inThreads(kThreads, [&](int i) { kept[static_cast<std::size_t>(i + 1) % kThreads].clear(); }); // of another
    EXPECT_EQ(Index::_objectsAlive, alive);
}

/// Lives longer than what the library itself keeps for the thread.
thread_local std::optional<Index> theLastIndex;

TEST(ObjectCountTest, ObjectsAtTheEndOfAThread_AreCounted)
{
    const auto alive = Index::_objectsAlive;
    const auto created = Index::_objectsCreated;
    test::inThreads(4, [](int) {
        theLastIndex.reset(); // made before the first object is counted
        theLastIndex.emplace(IndexString("last"));
    });
    EXPECT_EQ(Index::_objectsAlive, alive);
    EXPECT_GE(Index::_objectsCreated, created + 4);
}

TEST(ObjectCountTest, ThreadsOneAfterTheOther_UseTheSameMemory)
{
    constexpr int kThreads = 200;
    const auto allocatedByThreads = [](auto action) {
        const std::size_t before = test::bytesAllocated();
        for (int i = 0; i < kThreads; ++i)
            std::thread(action).join();
        return test::bytesAllocated() - before;
    };
    const auto work = [] {
        theLastIndex.reset();
        theLastIndex.emplace(IndexString("counted"));
    };
    allocatedByThreads(work);
    const std::size_t withoutWork = allocatedByThreads([] {});
    EXPECT_LT(allocatedByThreads(work), withoutWork + kThreads * sizeof(ObjectShard));
}
} // namespace
} // namespace vumo::Data
