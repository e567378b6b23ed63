#include "vumo/foundation/Ref.h"

#include "vumo/foundation/RefCounted.h"

#include <gtest/gtest.h>

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

TEST(RefTest, Assignment_TakesTheNewBeforeItReleasesTheOld)
{
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
    EXPECT_EQ(theLivingNodes, 0);
}
} // namespace
} // namespace vumo
