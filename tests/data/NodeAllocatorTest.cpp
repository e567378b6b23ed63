#include "vumo/data/NodeAllocator.h"

#include "tests/support/Random.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <new>
#include <set>
#include <string>
#include <utility>

namespace vumo::Data
{
namespace
{
using Plain = std::map<int, std::string>;
using Pooled = std::map<int, std::string, std::less<int>, NodeAllocator<std::pair<const int, std::string>>>;

void expectEqual(const Pooled& pooled, const Plain& plain)
{
    EXPECT_EQ(Plain(pooled.begin(), pooled.end()), plain);
}

/// A map and its model, after the same random insertions and removals.
struct Twins
{
    explicit Twins(unsigned int seed, NodePool::ePlacement placement = NodePool::ePlacement::kTogether)
    {
        pooled.get_allocator().pool().setPlacement(placement);
        test::Random random(seed);
        for (int i = 0; i < 20'000; ++i)
        {
            const int key = static_cast<int>(random.below(3'000));
            if (random.below(3) == 0)
            {
                pooled.erase(key);
                plain.erase(key);
                continue;
            }
            const std::string text = "the value of round " + std::to_string(i);
            pooled[key] = text;
            plain[key] = text;
        }
    }

    Pooled pooled;
    Plain plain;
};

TEST(NodeAllocatorTest, Maps_KeepWhatTheyHoldWhereverTheirNodesGo)
{
    Twins a(1);
    Twins b(2, NodePool::ePlacement::kApart);
    expectEqual(a.pooled, a.plain);

    Pooled copy(a.pooled);
    EXPECT_NE(copy.get_allocator(), a.pooled.get_allocator());
    a.pooled.swap(b.pooled);
    expectEqual(a.pooled, b.plain);
    expectEqual(b.pooled, a.plain);

    const Pooled moved(std::move(b.pooled));
    b.pooled = a.pooled;
    a.pooled = std::move(copy);
    expectEqual(moved, a.plain);
    expectEqual(a.pooled, a.plain);
    expectEqual(b.pooled, b.plain);

    a.pooled.clear();
    copy = a.pooled;
    copy[1] = "a map that was moved from is as good as a new one";
    EXPECT_EQ(copy.size(), 1U);
    expectEqual(moved, a.plain);
}

TEST(NodePoolTest, Nodes_AreDistinctAndUsedAgain)
{
    constexpr std::size_t kSize = 40;
    constexpr std::size_t kCount = 5'000;
    NodePool pool;
    std::set<char*> nodes;
    for (std::size_t i = 0; i < kCount; ++i)
        nodes.insert(static_cast<char*>(pool.take(kSize)));
    ASSERT_EQ(nodes.size(), kCount);
    for (auto node = std::next(nodes.begin()); node != nodes.end(); ++node)
        ASSERT_GE(*node - *std::prev(node), static_cast<std::ptrdiff_t>(kSize));

    for (char* const node : nodes)
        pool.giveBack(node);
    for (std::size_t i = 0; i < kCount; ++i)
        ASSERT_EQ(nodes.erase(static_cast<char*>(pool.take(kSize))), 1U);
}

TEST(NodePoolTest, Take_RefusesNodesOfAnotherSize)
{
    NodePool pool;
    for (const std::size_t illegal : {std::size_t(0), std::size_t(1), std::size_t(71)})
        EXPECT_THROW(pool.take(illegal), std::bad_alloc);
    EXPECT_NE(pool.take(72), nullptr);
    EXPECT_THROW(pool.take(80), std::bad_alloc);
    EXPECT_NE(pool.take(72), nullptr);
}
} // namespace
} // namespace vumo::Data
