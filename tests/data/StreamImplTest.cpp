#include "tests/support/DataFixtures.h"
#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamImplMapped.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <vector>

namespace vumo::Data
{
namespace
{
template <class Storage>
class StreamImplTest : public test::RecordTest
{
};

using Storages = ::testing::Types<StreamImplMapped, StreamImplDense>;
TYPED_TEST_SUITE(StreamImplTest, Storages, );

TYPED_TEST(StreamImplTest, CopiesAndAssignments_OwnTheirElements)
{
    const Ref<TypeParam> stream(new TypeParam(*this->mRecord, "s"));
    stream->setIndexType("pair");
    stream->setElement(2, test::record(*this->mRecord, 2, "two"));
    stream->setUseDefaults(true);
    const Ref<StreamImpl> clone(stream->clone());
    const Ref<TypeParam> assigned(new TypeParam());
    assigned->setElement(0, Handle(assigned->structure()));
    *assigned = *stream;
    const TypeParam& itself = *assigned;
    *assigned = itself;
    Handle element = stream->element(2);
    test::setText(element, "label", "changed");
    EXPECT_EQ(test::recordText(stream->element(2)), "2 changed");
    for (StreamImpl* const copy : {clone.get(), static_cast<StreamImpl*>(assigned.get())})
    {
        EXPECT_EQ(test::recordText(copy->element(2)), "2 two");
        EXPECT_EQ(copy->name() + " of " + copy->indexType(), "s of pair");
        EXPECT_TRUE(copy->useDefaults());
        EXPECT_EQ(copy->elementCount(), stream->elementCount());
    }
    const TypeParam outline(static_cast<const StreamImpl&>(*stream));
    EXPECT_EQ(outline.elementCount(), 0U);
    EXPECT_EQ(&outline.structure(), this->mRecord.get());
}

using StreamImplMappedTest = test::RecordTest;

TEST_F(StreamImplMappedTest, NewElements_HoldDefaultsToBeFilledInPlace)
{
    auto* const storage = new StreamImplMapped(*mRecord, "s");
    const Stream stream(storage);
    const Index indices[] = {5, 9, IndexString("b"), IndexString("a"), 1, 9, IndexString("a")};
    for (const Index& index : indices)
    {
        SCOPED_TRACE(index.asString());
        char* const block = storage->newElement(Index(index));
        EXPECT_EQ(stream.element(index).data(), block);
        EXPECT_EQ(stream.element(index).memberIndex(), 0U);
        EXPECT_EQ(test::recordText(stream, index), "0 ");
        Handle element(*mRecord, block);
        test::setText(element, "label", "replaced at once");
        storage->setElement(index, test::record(*mRecord, 1, "replaced the second time"));
        EXPECT_EQ(stream.element(index).memberIndex(), 1U); // that of the handle
    }
    std::string walked;
    for (StreamIterator position = stream.begin(); position.valid(); ++position)
        walked += position.index().asString() + " ";
    EXPECT_EQ(walked, "1 5 9 a b ");
}

TEST_F(StreamImplMappedTest, NewElementsWithoutSize_ExistAllTheSame)
{
    const auto empty = Structure::make("Empty", {});
    const Ref<StreamImplMapped> stream(new StreamImplMapped(*empty, "s"));
    EXPECT_EQ(stream->newElement(3), nullptr);
    EXPECT_TRUE(stream->hasElement(3));
}

/// A text that cannot be compared when its turn to fail has come.
class TouchyIndex : public IndexString
{
public:
    using IndexString::IndexString;
    IndexType* clone() const override { return new TouchyIndex(*this); }
    bool operator<(const IndexType& other) const override { return IndexString::operator<(touched(other)); }
    bool operator==(const IndexType& other) const override { return IndexString::operator==(touched(other)); }

    static inline int theTouchesLeft = -1; // none fails

private:
    static const IndexType& touched(const IndexType& other)
    {
        if (theTouchesLeft == 0)
            throw std::runtime_error("touched");
        --theTouchesLeft;
        return other;
    }
};

TEST_F(StreamImplMappedTest, WhatThrows_LeavesAllElementsAsTheyWere)
{
    const auto index = [](const char* text) { return Index(TouchyIndex(text)); };
    const Ref<StreamImplMapped> stream(new StreamImplMapped(*mRecord, "s"));
    for (const char* text : {"b", "d", "f", "h"})
        stream->setElement(index(text), test::record(*mRecord, 1, text));
    const Handle source = test::record(*mRecord, 2, "new");
    const std::string before = test::printed(stream.get());
    const std::function<void(StreamImplMapped&)> changes[] = {
        [&](auto& s) { s.setElement(index("d"), source); },
        [&](auto& s) { s.setElement(index("e"), source); },
        [&](auto& s) { s.setElement(index("z"), source); },
        [&](auto& s) { s.newElement(index("a")); },
        [&](auto& s) { s.reindexElement(index("b"), index("f")); },
        [&](auto& s) { s.reindexElement(index("h"), index("c")); },
        [&](auto& s) { s.swapElements(index("b"), index("f")); },
        [&](auto& s) { s.removeElement(index("f")); },
    };
    for (const auto& change : changes)
    {
        bool hasThrown = true;
        for (int touches = 0; hasThrown && touches < 100; ++touches)
        {
            const Ref<StreamImplMapped> copy(new StreamImplMapped(*stream));
            const std::string copyBefore = test::printedWithoutAddresses(copy.get());
            TouchyIndex::theTouchesLeft = touches;
            hasThrown = test::thrownBy([&] { change(*copy); }) == "runtime_error: touched";
            TouchyIndex::theTouchesLeft = -1;
            EXPECT_EQ(test::printedWithoutAddresses(copy.get()) == copyBefore, hasThrown);
        }
        EXPECT_FALSE(hasThrown);
    }
    EXPECT_EQ(test::printed(stream.get()), before);
}

class StreamImplDenseTest : public test::RecordTest
{
protected:
    void setRecord(unsigned int index)
    {
        EXPECT_TRUE(mStream->setElement(index, test::record(*mRecord, index % 256, "l" + std::to_string(index))));
    }

    std::string at(const Index& index) { return test::recordText(mStream->element(index)); }

    Ref<StreamImplDense> mStream{new StreamImplDense(*mRecord, "s")};
};

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
    const auto large = Structure::make("Large", {{Member::kUInt8, 5000, "bytes"}});
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
    EXPECT_EQ(mStream->indexOfPhysicalElement(0).index(), 0U);
    EXPECT_EQ(mStream->indexOfPhysicalElement(1).index(), 4294967295U);
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_EQ(at(0), "0 l0");
}

TEST_F(StreamImplDenseTest, SlotsThatNobodySet_HoldDefaultsWhereverTheyAreSeen)
{
    for (unsigned int i = 0; i <= 240; ++i) // to 360 slots, whose memory was used before
        setRecord(i);
    setRecord(250);
    EXPECT_EQ(at(241), "0 ");
    EXPECT_EQ(at(249), "0 ");
    const Ref<StreamImplDense> clone(static_cast<StreamImplDense*>(mStream->clone()));
    EXPECT_EQ(clone->physicalElementCount(), 360U);
    EXPECT_FALSE(clone->setElement(300, Handle(*mRecord, nullptr)));
    ASSERT_TRUE(mStream->setElementRange(0, 299));
    EXPECT_EQ(at(299), "0 ");
    for (StreamImplDense* const stream : {mStream.get(), clone.get()})
    {
        for (unsigned int i = 251; i < 360; ++i)
            EXPECT_TRUE(Handle(*mRecord, stream->elementAddr(i)).isDefault()) << i;
    }
}

TEST_F(StreamImplDenseTest, SetElementRange_GrowsForTheIndexOnePastTheLast)
{
    EXPECT_TRUE(mStream->setElementRange(0, 4294967295U)); // no elements, as there are
    EXPECT_TRUE(mStream->setElementRange(0, 238));
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_TRUE(mStream->setElementRange(0, 239));
    EXPECT_EQ(mStream->physicalElementCount(), 360U);
}

TEST_F(StreamImplDenseTest, AClearedStream_LivesWithoutItsBlock)
{
    setRecord(3);
    EXPECT_TRUE(mStream->clear());
    EXPECT_TRUE(mStream->clear());
    EXPECT_EQ(mStream->elementCount(), 4U);
    EXPECT_EQ(mStream->physicalElementCount(), 240U);
    EXPECT_EQ(at(3), "none");
    EXPECT_FALSE(mStream->ensureSpaceForElement(3));
    EXPECT_FALSE(mStream->setElement(3, test::record(*mRecord, 3, "x")));
    EXPECT_FALSE(mStream->reindexElement(3, 2));
    EXPECT_FALSE(mStream->swapElements(2, 3));
    EXPECT_FALSE(mStream->removeElement(3));
    EXPECT_FALSE(mStream->setElementRange(0, 9));
    EXPECT_TRUE(mStream->mergeStream(*mStream));
    test::printed(mStream.get());
    const Ref<StreamImpl> clone(mStream->clone());
    EXPECT_EQ(clone->elementCount(), 4U);
    EXPECT_FALSE(clone->element(3).hasData());
    EXPECT_TRUE(mStream->setElementRange(0, 1));
    EXPECT_EQ(mStream->elementCount(), 1U);

    setRecord(240); // grows, with defaults from slot 0 on
    EXPECT_EQ(at(0), "0 ");
    EXPECT_EQ(at(239), "0 ");
    EXPECT_EQ(at(240), "240 l240");
}

TEST_F(StreamImplDenseTest, AnotherStructure_GetsABlockOfItsOwnLayout)
{
    const auto wide = Structure::make("Wide", {{Member::kDouble, 100, "d"}, {Member::kString, 1, "s"}});
    setRecord(1);
    ASSERT_TRUE(mStream->setElementRange(0, 0)); // no elements, but a block with a label in it
    EXPECT_TRUE(mStream->setStructure(*wide));
    EXPECT_EQ(mStream->elementAddr(0), nullptr);
    const Ref<StreamImpl> clone(mStream->clone());
    for (StreamImpl* const stream : {static_cast<StreamImpl*>(mStream.get()), clone.get()})
    {
        EXPECT_TRUE(stream->setElement(200, Handle(*wide)));
        EXPECT_TRUE(stream->element(200).isDefault());
    }
    EXPECT_EQ(mRecord->refCount(), 1);
}

TEST_F(StreamImplDenseTest, AnotherStructureOfThatSize_GetsABlockOfItsOwnLayout)
{
    const auto text = Structure::make("S", {{Member::kString, 1, "value"}});
    const auto number = Structure::make("S", {{Member::kUInt64, 1, "value"}});
    const Ref<StreamImplDense> stream(new StreamImplDense(*text, "s"));
    for (const Ref<Structure>& structure : {number, text, number})
    {
        ASSERT_TRUE(stream->setStructure(*structure));
        EXPECT_EQ(stream->elementAddr(0), nullptr);
        Handle element(*structure);
        test::setText(element, "value", "12");
        EXPECT_TRUE(stream->setElement(0, element));
        EXPECT_TRUE(stream->setElementRange(0, 1));
        ASSERT_TRUE(stream->setElementRange(0, 0));
    }
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

// Gives the place of the first virtual function that a class derived from Storage adds.
template <class Storage>
std::uintptr_t firstFreeSlot()
{
    struct Derived : Storage
    {
        virtual void added() = 0;
    };
    // In the C++ ABI of g++ and clang a pointer to a virtual function begins with the offset of its slot, and one.
    void (Derived::*const added)() = &Derived::added;
    std::uintptr_t offset = 0;
    std::memcpy(&offset, static_cast<const void*>(&added), sizeof offset);
    return (offset - 1) / sizeof(void*);
}

// Storages of plug-ins are compiled against these tables. The destructor takes two slots.
TEST(StreamImplSlotsTest, StoragesAddNoSlotsButTheDenseFour)
{
    EXPECT_EQ(firstFreeSlot<StreamImpl>(), 19U);
    EXPECT_EQ(firstFreeSlot<StreamImplMapped>(), 19U);
    EXPECT_EQ(firstFreeSlot<StreamImplDense>(), 23U);
}
} // namespace
} // namespace vumo::Data
