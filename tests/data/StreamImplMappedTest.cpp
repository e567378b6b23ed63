#include "vumo/data/StreamImplMapped.h"

#include "tests/support/DataFixtures.h"

namespace vumo
{
namespace Data
{
namespace
{
class StreamImplMappedTest : public test::DataTest
{
protected:
    std::string at(const Index& index) { return test::recordText(mStream->element(index)); }

    Ref<Structure> mRecord = test::recordStructure();
    Ref<StreamImplMapped> mStream{new StreamImplMapped(*mRecord, "s")};
};

using StreamImplMappedGoldenTest = StreamImplMappedTest;

TEST_F(StreamImplMappedTest, Elements_MoveAndTradePlaces)
{
    mStream->setElement(3, test::record(*mRecord, 3, "three"));
    mStream->setElement(9, test::record(*mRecord, 9, "nine"));
    EXPECT_TRUE(mStream->reindexElement(3, 3));
    EXPECT_FALSE(mStream->reindexElement(7, 3));
    EXPECT_FALSE(mStream->swapElements(3, 7));
    EXPECT_TRUE(mStream->swapElements(3, 9));
    EXPECT_TRUE(mStream->swapElements(3, 3));
    EXPECT_EQ(at(3), "9 nine");
    EXPECT_TRUE(mStream->reindexElement(9, 3));
    EXPECT_EQ(at(3), "3 three");
    EXPECT_EQ(at(9), "none");
    EXPECT_TRUE(mStream->reindexElement(3, IndexPair(1, 2)));
    EXPECT_EQ(at(IndexPair(1, 2)), "3 three");
    EXPECT_TRUE(mStream->removeElement(77));
    EXPECT_EQ(mStream->elementCount(), 1U);
    EXPECT_TRUE(mStream->clear());
    EXPECT_EQ(mStream->elementCount(), 0U);
}

TEST_F(StreamImplMappedTest, CopiesAndAssignments_OwnTheirElements)
{
    mStream->setElement(IndexString("a"), test::record(*mRecord, 1, "one"));
    mStream->setUseDefaults(true);
    const Ref<StreamImpl> clone(mStream->clone());
    StreamImplMapped assigned;
    assigned.setElement(0, Handle(assigned.structure()));
    assigned = *mStream;
    const StreamImplMapped& itself = assigned;
    assigned = itself;
    Handle element = mStream->element(IndexString("a"));
    test::setText(element, "label", "changed");
    for (StreamImpl* const copy : {clone.get(), static_cast<StreamImpl*>(&assigned)})
    {
        EXPECT_EQ(test::recordText(copy->element(IndexString("a"))), "1 one");
        EXPECT_EQ(copy->name(), "s");
        EXPECT_TRUE(copy->useDefaults());
        EXPECT_EQ(copy->elementCount(), 1U);
    }
    const StreamImplMapped outline(static_cast<const StreamImpl&>(*mStream));
    EXPECT_EQ(outline.elementCount(), 0U);
    EXPECT_EQ(&outline.structure(), mRecord.get());
}

TEST_F(StreamImplMappedGoldenTest, Debug_ReportsRangeAndElements)
{
    EXPECT_TRUE(mStream->setElementRange(2, IndexPair(1, 2)));
    EXPECT_EQ(mStream->elementCount(), 0U);
    mStream->setElement(IndexPair(3, 7), test::record(*mRecord, 1, "one"));
    mStream->setElement(5, Handle(*mRecord));
    std::ostringstream address;
    address << static_cast<const void*>(mStream.get());
    EXPECT_EQ(test::printed(mStream.get()), "Data Stream (Mapped)\n"
                                            "{\n"
                                            "    PTR: " +
                                                address.str() +
                                                "\n"
                                                "    Lowest valid index = 2\n"
                                                "    Highest valid index = 1 2\n"
                                                "    Stream Elements\n"
                                                "    {\n"
                                                "        Element count = 2\n"
                                                "        Index (5), Handle (1 elements: [ 0 ])\n"
                                                "        Index (3 7), Handle (1 elements: [ one ])\n"
                                                "    }\n"
                                                "}\n");
    const unsigned long long size = sizeof(StreamImplMapped) + 2 * (sizeof(Index) + sizeof(Handle));
    EXPECT_EQ(test::footprintOf(mStream.get()).totalSize(), size);
    EXPECT_EQ(test::footprintOf(mStream.get()).totalFragments(), 5U);
    std::ostringstream out;
    vumo::Debug::Print request(out);
    EXPECT_TRUE(static_cast<const StreamImpl&>(*mStream).debug(request)); // the storage's own description
    EXPECT_EQ(out.str(), test::printed(mStream.get()));
}
} // namespace
} // namespace Data
} // namespace vumo
