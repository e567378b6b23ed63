#include "vumo/data/StreamImplDense.h"

#include "tests/support/DataFixtures.h"

#include <vector>

namespace vumo
{
namespace Data
{
namespace
{
class StreamImplDenseTest : public test::DataTest
{
protected:
    void setRecord(unsigned int index)
    {
        EXPECT_TRUE(mStream->setElement(index, test::record(*mRecord, index % 256, "l" + std::to_string(index))));
    }

    std::string at(const Index& index) { return test::recordText(mStream->element(index)); }

    Ref<Structure> mRecord = test::recordStructure();
    Ref<StreamImplDense> mStream{new StreamImplDense(*mRecord, "s")};
};

using StreamImplDenseGoldenTest = StreamImplDenseTest;

struct GrowthStep
{
    unsigned int index;
    bool fits;
    unsigned int allocated;
};

struct GrowthCase
{
    unsigned int elementSize;
    std::vector<GrowthStep> steps;
};

TEST_F(StreamImplDenseTest, Growth_FollowsItsRule)
{
    const GrowthCase cases[] = {
        {0, {{0, true, 0}, {4294967294U, true, 0}}},
        {1, {{0, true, 4096}}},
        {4, {{0, true, 1024}, {1023, true, 1024}, {1024, true, 1536}, {5000, true, 7500}, {11249, true, 11250}}},
        {4, {{5000, true, 7500}}},
        {4, {{1431655766, false, 0}, {4294967295U, false, 0}, {0, true, 1024}, {2863311531U, false, 1024}}},
        {17, {{0, true, 240}, {240, true, 360}}},
        {2048, {{1, true, 2}, {2, true, 3}, {3, true, 4}, {4, true, 6}}},
        {4096, {{1, false, 1}, {0, true, 1}, {1, false, 1}, {2, true, 3}, {3, true, 4}}},
        {4097, {{0, false, 0}, {1, false, 1}, {2, true, 3}}},
        {5000, {{10, true, 15}}},
    };
    for (const GrowthCase& expected : cases)
    {
        const Ref<Structure> structure(Structure::create());
        if (expected.elementSize > 0)
        {
            ASSERT_TRUE(structure->addMember(Member::kUInt8, expected.elementSize, "bytes"));
        }
        const Ref<StreamImplDense> stream(new StreamImplDense(*structure, "s"));
        for (const GrowthStep& step : expected.steps)
        {
            SCOPED_TRACE(std::to_string(expected.elementSize) + " bytes at " + std::to_string(step.index));
            EXPECT_EQ(stream->ensureSpaceForElement(step.index), step.fits);
            EXPECT_EQ(stream->physicalElementCount(), step.allocated);
            const bool hasBytes = step.fits && expected.elementSize > 0;
            EXPECT_EQ(stream->elementAddr(step.index) != nullptr, hasBytes);
        }
        EXPECT_EQ(stream->elementCount(), 0U);
        EXPECT_EQ(stream->elementAddr(stream->physicalElementCount()), nullptr);
    }
}

TEST_F(StreamImplDenseTest, ElementsThatDoNotFit_AreRefusedAndChangeNothing)
{
    const auto large = test::heldStructure("Large", {{Member::kUInt8, 5000, "bytes"}});
    const Ref<StreamImplDense> stream(new StreamImplDense(*large, "s"));
    EXPECT_FALSE(stream->setElement(0, Handle(*large)));
    EXPECT_FALSE(stream->setElement(1, Handle(*large)));
    EXPECT_EQ(stream->elementCount(), 0U);
    setRecord(0);
    for (const unsigned int index : {4294967295U, 4294967294U, 2863311531U})
    {
        EXPECT_FALSE(mStream->setElement(index, test::record(*mRecord, 1, "far"))) << index;
        EXPECT_FALSE(mStream->reindexElement(0, index)) << index;
        EXPECT_FALSE(mStream->setElementRange(0, index)) << index;
    }
    EXPECT_EQ(mStream->elementCount(), 1U);
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_EQ(at(0), "0 l0");
}

TEST_F(StreamImplDenseTest, SkippedAndRemovedElements_ExistWithDefaultValues)
{
    setRecord(9);
    EXPECT_EQ(mStream->elementCount(), 10U);
    EXPECT_TRUE(mStream->element(8).isDefault());
    EXPECT_TRUE(mStream->removeElement(9));
    EXPECT_TRUE(mStream->hasElement(9));
    EXPECT_TRUE(mStream->element(9).isDefault());
    EXPECT_EQ(mStream->elementCount(), 10U);
    EXPECT_TRUE(mStream->removeElement(10));
    EXPECT_FALSE(mStream->element(10).hasData());
    EXPECT_EQ(mStream->indexOfPhysicalElement(9).index(), 9U);
    EXPECT_EQ(mStream->indexOfPhysicalElement(10).index(), 4294967295U);
}

TEST_F(StreamImplDenseTest, Reindex_CopiesAndLeavesDefaultsBehind)
{
    setRecord(1);
    setRecord(3);
    EXPECT_TRUE(mStream->reindexElement(1, 3));
    EXPECT_EQ(at(3), "1 l1");
    EXPECT_EQ(at(1), "0 ");
    EXPECT_TRUE(mStream->reindexElement(3, 5000)); // moves the block
    EXPECT_EQ(at(5000), "1 l1");
    EXPECT_EQ(mStream->elementCount(), 5001U);
    EXPECT_TRUE(mStream->reindexElement(5000, 5000));
    EXPECT_EQ(at(5000), "0 ");
    EXPECT_FALSE(mStream->reindexElement(5001, 0));
}

TEST_F(StreamImplDenseTest, Swap_NeedsBothElements)
{
    setRecord(0);
    setRecord(2);
    EXPECT_TRUE(mStream->swapElements(0, 2));
    EXPECT_TRUE(mStream->swapElements(2, 2));
    EXPECT_FALSE(mStream->swapElements(2, 3));
    EXPECT_FALSE(mStream->swapElements(3, 2));
    EXPECT_EQ(at(0), "2 l2");
    EXPECT_EQ(at(2), "0 l0");
    EXPECT_EQ(mStream->elementCount(), 3U);
}

TEST_F(StreamImplDenseTest, SetElementRange_SizesTheStream)
{
    for (unsigned int i = 0; i < 5; ++i)
        setRecord(i);
    EXPECT_TRUE(mStream->setElementRange(0, 4));
    EXPECT_FALSE(mStream->setElementRange(5, 4)); // n is 0
    EXPECT_EQ(mStream->elementCount(), 5U);
    EXPECT_TRUE(mStream->setElementRange(10, 12)); // a size, not a span
    EXPECT_EQ(mStream->elementCount(), 2U);
    setRecord(4);
    EXPECT_EQ(at(2), "2 l2"); // the slot at n - 1 kept its data
    EXPECT_EQ(at(3), "0 ");
    EXPECT_TRUE(mStream->setElementRange(0, 238));
    EXPECT_EQ(mStream->elementCount(), 239U);
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_TRUE(mStream->setElementRange(0, 239)); // grows for the index n, not n - 1
    EXPECT_EQ(mStream->physicalElementCount(), 360U);
    EXPECT_EQ(at(239), "0 ");
    EXPECT_TRUE(mStream->setElementRange(0, 0));
    EXPECT_EQ(mStream->elementCount(), 0U);
    EXPECT_EQ(at(0), "none");
}

TEST_F(StreamImplDenseTest, AClearedStream_LivesWithoutItsBlock)
{
    setRecord(3);
    EXPECT_TRUE(mStream->clear());
    EXPECT_TRUE(mStream->clear());
    EXPECT_EQ(mStream->elementCount(), 4U);
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_EQ(mStream->elementAddr(3), nullptr);
    EXPECT_EQ(at(3), "none");
    EXPECT_FALSE(mStream->ensureSpaceForElement(3));
    EXPECT_FALSE(mStream->setElement(3, test::record(*mRecord, 3, "x")));
    EXPECT_FALSE(mStream->reindexElement(3, 2));
    EXPECT_FALSE(mStream->swapElements(2, 3));
    EXPECT_FALSE(mStream->removeElement(3));
    EXPECT_FALSE(mStream->setElementRange(0, 9));
    EXPECT_TRUE(mStream->mergeStream(*mStream));
    test::printed(mStream.get());
    test::footprintOf(mStream.get());
    Ref<StreamImpl> clone(mStream->clone());
    EXPECT_EQ(clone->elementCount(), 4U);
    EXPECT_FALSE(clone->element(3).hasData());
    EXPECT_TRUE(mStream->setElementRange(0, 1));
    EXPECT_EQ(mStream->elementCount(), 1U);

    setRecord(240); // grows, with defaults from slot 0 on
    EXPECT_EQ(at(0), "0 ");
    EXPECT_EQ(at(239), "0 ");
    EXPECT_EQ(at(240), "240 l240");
}

TEST_F(StreamImplDenseTest, CopiesAndAssignments_OwnTheirElements)
{
    setRecord(2);
    EXPECT_TRUE(mStream->setElementRange(0, 1)); // keeps uncounted data in slot 1
    setRecord(2);
    const Ref<StreamImpl> clone(mStream->clone());
    StreamImplDense assigned;
    assigned = *mStream;
    const StreamImplDense& itself = assigned;
    assigned = itself;
    Handle element = mStream->element(2);
    test::setText(element, "label", "changed");
    EXPECT_EQ(test::recordText(clone->element(2)), "2 l2");
    EXPECT_EQ(test::recordText(assigned.element(2)), "2 l2");
    EXPECT_EQ(assigned.name(), "s");
    EXPECT_EQ(assigned.physicalElementCount(), 240U);
    assigned = StreamImplDense();
    EXPECT_EQ(assigned.elementCount(), 0U);
}

TEST_F(StreamImplDenseTest, ComplexIndices_ReadAsZero)
{
    EXPECT_TRUE(mStream->setElement(IndexPair(7, 8), test::record(*mRecord, 1, "one")));
    EXPECT_EQ(at(0), "1 one");
    EXPECT_EQ(mStream->elementCount(), 1U);
}

TEST_F(StreamImplDenseTest, AnotherStructure_GetsABlockOfItsOwnLayout)
{
    const auto wide = test::heldStructure("Wide", {{Member::kDouble, 100, "d"}, {Member::kString, 1, "s"}});
    setRecord(1);
    ASSERT_TRUE(mStream->setElementRange(0, 0)); // no elements, but a block with a label in it
    EXPECT_TRUE(mStream->setStructure(*wide));
    EXPECT_EQ(mStream->elementAddr(0), nullptr);
    EXPECT_TRUE(mStream->setElement(200, Handle(*wide)));
    EXPECT_TRUE(mStream->element(200).isDefault());
    EXPECT_EQ(mRecord->refCount(), 1);
}

TEST_F(StreamImplDenseTest, AStructureThatGrewWhileThereWereNoElements_GetsANewBlock)
{
    setRecord(1);
    ASSERT_TRUE(mStream->setElementRange(0, 0));
    ASSERT_TRUE(mRecord->addMember(Member::kString, 20, "more"));
    setRecord(239); // in the last of the slots that there were
    EXPECT_EQ(at(239), "239 l239");
    EXPECT_EQ(at(0), "0 ");
}

TEST_F(StreamImplDenseGoldenTest, Debug_ReportsCountAllocationAndElements)
{
    setRecord(1);
    EXPECT_EQ(test::printed(mStream.get()), "Data Stream\n"
                                            "{\n"
                                            "    Highest valid index = 2\n"
                                            "    Number allocated    = 240\n"
                                            "    Stream Elements\n"
                                            "    {\n"
                                            "        Index (0), Handle (1 elements: [ 0 ])\n"
                                            "        Index (1), Handle (1 elements: [ 1 ])\n"
                                            "    }\n"
                                            "}\n");
    EXPECT_EQ(test::footprintOf(mStream.get()).totalSize(), sizeof(StreamImplDense) + 240 * 17);
    std::ostringstream out;
    vumo::Debug::Print request(out);
    EXPECT_TRUE(static_cast<const StreamImpl&>(*mStream).debug(request));
    EXPECT_EQ(out.str(), test::printed(mStream.get()));
}
} // namespace
} // namespace Data
} // namespace vumo
