#include "vumo/data/Index.h"

#include "tests/support/DataFixtures.h"
#include "tests/support/Random.h"

#include <dlfcn.h>

#include <typeinfo>
#include <utility>

namespace vumo::Data
{
namespace
{
using IndexTest = test::DataTest;
using IndexPropertyTest = IndexTest;
using IndexGoldenTest = IndexTest;

struct TextCase
{
    const char* typeName;
    std::string text;
    const char* result; // the index as text, or what is thrown
};

TEST_F(IndexTest, DoCreate_ReadsTheTextOfEachType)
{
    const TextCase cases[] = {
        {"numeric", "12", "12"},
        {"numeric", "  12\t", "12"},
        {"numeric", "\r12 \r", "12"},
        {"numeric", "007", "7"},
        {"numeric", "4294967295", "4294967295"},
        {"numeric", "4294967296", "eCreationErrors: 1"},
        {"numeric", "", "eCreationErrors: 1"},
        {"numeric", "  ", "eCreationErrors: 1"},
        {"numeric", "12 34", "eCreationErrors: 2"},
        {"numeric", "-1", "eCreationErrors: 1"},
        {"numeric", "+1", "eCreationErrors: 1"},
        {"numeric", "1e3", "eCreationErrors: 1"},
        {"numeric", "1\n", "eCreationErrors: 1"},
        {"numeric", "1\v", "eCreationErrors: 1"},
        {"numeric", "1\f", "eCreationErrors: 1"},
        {"numeric", "1,000", "eCreationErrors: 1"},
        {"numeric", std::string("1\0", 2), "eCreationErrors: 1"},
        {"numeric", "1\xB2", "eCreationErrors: 1"},
        {"pair", "3 7", "3 7"},
        {"pair", " 3\t7\r", "3 7"},
        {"pair", "4294967295 0", "4294967295 0"},
        {"pair", "4,5", "eCreationErrors: 1"},
        {"pair", "4", "eCreationErrors: 1"},
        {"pair", "4 ", "eCreationErrors: 1"},
        {"pair", "", "eCreationErrors: 1"},
        {"pair", "4 4294967296", "eCreationErrors: 1"},
        {"pair", "4 -5", "eCreationErrors: 1"},
        {"pair", "4\n5", "eCreationErrors: 1"},
        {"pair", "4 5 6", "eCreationErrors: 2"},
        {"string", "", ""},
        {"string", " any\n\"text\" \xFF", " any\n\"text\" \xFF"},
        {"Pair", "4 5", "eCreationErrors: 0"},
        {"", "4", "eCreationErrors: 0"},
    };
    for (const TextCase& expected : cases)
    {
        SCOPED_TRACE(std::string(expected.typeName) + " of '" + expected.text + "'");
        std::string result;
        const std::string thrown = test::thrownBy([&] {
            const Index index = Index::doCreate(expected.typeName, expected.text);
            EXPECT_EQ(index.typeName(), expected.typeName);
            result = index.asString();
        });
        EXPECT_EQ(thrown == "nothing" ? result : thrown, expected.result);
    }
}

TEST_F(IndexTest, Registry_KeepsTheFirstCreatorOfAName)
{
    const Index::Creator fortyTwo = [](const std::string&) { return Index(42); };
    EXPECT_FALSE(Index::registerType("numeric", fortyTwo));
    EXPECT_EQ(Index::doCreate("numeric", "7").index(), 7U);
    EXPECT_TRUE(Index::registerType("fortyTwo", fortyTwo));
    EXPECT_EQ(Index::doCreate("fortyTwo", "7").index(), 42U);
    EXPECT_TRUE(Index::deregisterType("fortyTwo"));
    EXPECT_FALSE(Index::deregisterType("fortyTwo"));
    EXPECT_FALSE(Index::deregisterType("numeric"));
    EXPECT_EQ(test::thrownBy([] { Index::creator("fortyTwo"); }), "eCreationErrors: 0");
    EXPECT_TRUE(IndexPair::myRegistration && IndexString::myRegistration);
}

#ifdef VUMO_PLUGIN_PATH
TEST_F(IndexTest, PluginsThatAreUnloaded_TakeTheirTypesWithThem)
{
    const Index::Creator before = Index::creator("pair");
    for (int round = 0; round < 2; ++round)
    {
        void* const plugin = dlopen(VUMO_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(plugin) << dlerror();
        {
            const Ref<Structure> structure = test::recordStructure();
            Stream stream(*structure, "s");
            EXPECT_TRUE(stream.setIndexType("grid"));
            EXPECT_TRUE(stream.setElement(Index::doCreate("grid", "B2"), Handle(*structure)));
            EXPECT_TRUE(stream.hasElement(Index::doCreate("grid", "B2")));
        }
        ASSERT_EQ(dlclose(plugin), 0);
        EXPECT_FALSE(dlopen(VUMO_PLUGIN_PATH, RTLD_NOW | RTLD_NOLOAD)) << "it is loaded still";
        EXPECT_EQ(test::thrownBy([] { Index::creator("grid"); }), "eCreationErrors: 0");
    }
    EXPECT_EQ(Index::creator("pair"), before);
}
#endif

TEST_F(IndexTest, CopyConstruction_ClonesAndAssignmentShares)
{
    Index pair = IndexPair(1, 2);
    Index copy(pair);
    EXPECT_NE(static_cast<IndexType*>(copy), static_cast<IndexType*>(pair));
    EXPECT_TRUE(copy == pair);
    Index assigned(5);
    assigned = pair;
    EXPECT_EQ(static_cast<IndexType*>(assigned), static_cast<IndexType*>(pair));
    const Index& itself = assigned;
    assigned = itself;
    const Ref<IndexType> clone(static_cast<IndexType*>(assigned)->clone());
    EXPECT_EQ(clone->refCount(), 1);
    EXPECT_TRUE(*clone == IndexPair(1, 2));
    pair = 9;
    EXPECT_EQ(static_cast<IndexType*>(pair), nullptr);
    EXPECT_EQ(pair.index(), 9U);
    EXPECT_EQ(assigned.asString(), "1 2");
    EXPECT_EQ(static_cast<IndexType*>(assigned)->refCount(), 1);
    assigned = Index(3);
    EXPECT_EQ(assigned.asString(), "3");
}

TEST_F(IndexTest, ComplexIndices_ReadAsNumberZero)
{
    Index index(7);
    index = Index(IndexPair(1, 2));
    EXPECT_EQ(index.index(), 0U);
    EXPECT_EQ(static_cast<unsigned int>(index), 0U);
    EXPECT_EQ(index.typeName(), "pair");
    EXPECT_TRUE(Index(7).supportsDenseMode());
    EXPECT_TRUE(index.supportsDenseMode());
    EXPECT_FALSE(Index(IndexString("a")).supportsDenseMode());
}

TEST_F(IndexTest, DenseSpaceBetween_CountsBothEndsAndWraps)
{
    struct SpaceCase
    {
        Index left;
        Index right;
        unsigned int space;
    };
    const SpaceCase cases[] = {
        {3, 3, 1},
        {3, 10, 8},
        {0, 4294967295U, 0},
        {0, 4294967294U, 4294967295U},
        {3, IndexPair(3, 3), 0},
        {IndexPair(1, 1), IndexPair(3, 4), 12},
        {IndexPair(1, 4), IndexPair(3, 1), 12},
        {IndexPair(0, 0), IndexPair(4294967295U, 65535), 0},
        {IndexPair(0, 0), IndexPair(65535, 65536), 65536},
        {IndexPair(1, 1), IndexString("1 1"), 0},
        {IndexString("a"), IndexString("a"), 0},
    };
    for (const SpaceCase& expected : cases)
    {
        SCOPED_TRACE(expected.left.asString() + " to " + expected.right.asString());
        EXPECT_EQ(expected.left.denseSpaceBetween(expected.right), expected.space);
        EXPECT_EQ(expected.right.denseSpaceBetween(expected.left), expected.space);
    }
}

TEST_F(IndexTest, Order_FollowsNumbersCoordinatesAndBytes)
{
    const Index pair = IndexPair(1, 2);
    const Index text = IndexString("1 2");
    const bool pairsFirst = typeid(IndexPair).before(typeid(IndexString));
    const std::pair<Index, Index> ascending[] = {
        {pairsFirst ? pair : text, pairsFirst ? text : pair},
        {5, IndexPair(0, 0)},
        {4294967295U, IndexString("")},
        {2147483647, 2147483648U},
        {IndexPair(4, 5), IndexPair(5, 0)},
        {IndexPair(4, 4), IndexPair(4, 5)},
        {IndexString(""), IndexString("a")},
        {IndexString("B"), IndexString("a")},
        {IndexString("ab"), IndexString("abc")},
        {IndexString("z"), IndexString("\xC3\xA4")}, // bytes are unsigned
    };
    for (const auto& [low, high] : ascending)
    {
        SCOPED_TRACE(low.asString() + " before " + high.asString());
        EXPECT_TRUE(low < high && low <= high && low != high);
        EXPECT_FALSE(low > high || low >= high || low == high);
        EXPECT_TRUE(high > low && high >= low && high != low);
        EXPECT_FALSE(high < low || high <= low || high == low);
    }
}

TEST_F(IndexPropertyTest, Order_IsTotalOverAllTypes)
{
    test::Random random;
    SCOPED_TRACE(random.seedText());
    const auto anyIndex = [&] { // few enough for many to be equal
        const unsigned int n = random.below(3);
        const Index choices[] = {n, IndexPair(n, random.below(3)), IndexString(std::string(n, 'x'))};
        return choices[random.below(3)];
    };
    for (int round = 0; round < 20000; ++round)
    {
        const Index a = anyIndex();
        const Index b = anyIndex();
        const Index c = anyIndex();
        SCOPED_TRACE(a.asString() + " | " + b.asString() + " | " + c.asString());
        ASSERT_EQ((a < b) + (a == b) + (a > b), 1);
        ASSERT_TRUE((a <= b) != (a > b) && (a >= b) != (a < b) && (a != b) != (a == b));
        ASSERT_EQ(a == b, a.typeName() == b.typeName() && a.asString() == b.asString());
        ASSERT_TRUE((a < b) == (b > a) && (!(a < b && b < c) || a < c));
    }
}

TEST_F(IndexGoldenTest, Debug_WritesNumbersPairsAndTexts)
{
    const Index number(12);
    const Index complex = IndexPair(3, 7);
    IndexPair pair;
    pair = IndexPair(3, 7);
    IndexString text;
    text = std::string("c\0d", 3);
    EXPECT_EQ(test::printed(&number), "12");
    EXPECT_EQ(test::printed(&complex), "");
    EXPECT_EQ(test::printed(&pair), "3,7");
    unsigned int numbers[2] = {};
    pair.getIndexPair(numbers[0], numbers[1]);
    EXPECT_EQ(IndexPair(numbers[0], numbers[1]), pair);
    EXPECT_EQ(test::printed(&text), std::string("c\0d", 3)); // as it stands
    EXPECT_EQ(test::printed<Index>(nullptr), "");
    EXPECT_EQ(test::footprintOf(&number).totalSize(), sizeof(Index));
    EXPECT_EQ(test::footprintOf(&complex).totalSize(), sizeof(Index));
    EXPECT_EQ(test::footprintOf(&pair).totalSize(), sizeof(IndexPair));
    EXPECT_EQ(test::footprintOf(&text).totalSize(), sizeof(IndexString) + 4);
}
} // namespace
} // namespace vumo::Data
