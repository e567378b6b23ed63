#include "vumo/data/IndexType.h"

#include "tests/support/DataFixtures.h"

namespace vumo
{
namespace Data
{
namespace
{
class IndexTypeTest : public test::DataTest
{
};

TEST_F(IndexTypeTest, Clones_AreOfTheSameClassAndHeldByNobody)
{
    const IndexPair pair(1, 2);
    const Ref<IndexType> pairClone(pair.clone());
    const IndexString text("a");
    const Ref<IndexType> textClone(text.clone());
    EXPECT_EQ(pairClone->refCount(), 1);
    EXPECT_TRUE(*pairClone == pair);
    EXPECT_EQ(pairClone->typeName(), "pair");
    EXPECT_TRUE(*textClone == text);
    EXPECT_EQ(textClone->typeName(), "string");
}

TEST_F(IndexTypeTest, ValuesOfDifferentClasses_AreStrictlyOrderedByClass)
{
    const IndexPair pair(1, 2);
    const IndexString text("1 2");
    const IndexType& left = pair;
    const IndexType& right = text;
    const bool pairsFirst = typeid(IndexPair).before(typeid(IndexString));
    EXPECT_FALSE(left == right || right == left);
    EXPECT_TRUE(left != right && right != left);
    EXPECT_EQ(left < right, pairsFirst);
    EXPECT_EQ(left <= right, pairsFirst);
    EXPECT_EQ(left > right, !pairsFirst);
    EXPECT_EQ(left >= right, !pairsFirst);
    EXPECT_EQ(right < left, !pairsFirst);
    EXPECT_EQ(right >= left, pairsFirst);
}

TEST_F(IndexTypeTest, Values_AreAssignedAndRead)
{
    IndexPair pair;
    pair = IndexPair(3, 4);
    unsigned int first = 0;
    unsigned int second = 0;
    pair.getIndexPair(first, second);
    EXPECT_EQ(first, 3U);
    EXPECT_EQ(second, 4U);
    IndexString text;
    EXPECT_EQ(text.indexString(), "");
    text = std::string("b");
    EXPECT_EQ(text.indexString(), "b");
    text = IndexString(std::string("c\0d", 3));
    EXPECT_EQ(text.asString(), std::string("c\0d", 3));
    EXPECT_EQ(test::printed(&text), std::string("c\0d", 3)); // as it stands
}

TEST_F(IndexTypeTest, RefusedTexts_LeaveTheCountersAlone)
{
    const std::string living = test::livingObjects();
    EXPECT_THROW(IndexPair("4"), Index::eCreationErrors);
    EXPECT_THROW(Index(std::string("x")), Index::eCreationErrors);
    EXPECT_EQ(test::livingObjects(), living);
}
} // namespace
} // namespace Data
} // namespace vumo
