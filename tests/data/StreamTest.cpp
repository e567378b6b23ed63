#include "vumo/data/Stream.h"

#include "tests/support/DataFixtures.h"
#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamImplMapped.h"

#include <initializer_list>
#include <utility>

namespace vumo::Data
{
namespace
{
class StreamTest : public test::RecordTest
{
protected:
    /// A stream of records whose labels are their numbers, at these indices.
    Stream streamWith(std::initializer_list<unsigned int> indices, bool isDense = false) const
    {
        Stream stream(*mRecord, "records");
        stream.useDenseStorage(isDense);
        for (const unsigned int index : indices)
            EXPECT_TRUE(stream.setElement(index, test::record(*mRecord, index, "l" + std::to_string(index))));
        return stream;
    }

    /// All elements as "index: number label, ".
    static std::string contents(const Stream& stream)
    {
        std::string text;
        for (auto [index, element] : stream.elements())
            text += index.asString() + ": " + test::recordText(element) + ", ";
        return text;
    }
};

using StreamGoldenTest = StreamTest;

TEST_F(StreamTest, ANewStream_IsMappedNumericAndEmpty)
{
    const Stream stream;
    EXPECT_EQ(stream.name(), "Stream");
    EXPECT_STREQ(stream.structure().name(), "structure");
    EXPECT_EQ(stream.indexType(), "numeric");
    EXPECT_FALSE(stream.useDefaults());
    EXPECT_EQ(stream.elementCount(), 0U);
    EXPECT_TRUE(Stream(*mRecord, "s").useDenseStorage(false));
}

TEST_F(StreamTest, AStorageMadeElsewhere_IsSharedAndReleased)
{
    const Ref<StreamImpl> storage(new StreamImplMapped(*mRecord, "s"));
    {
        Stream stream(storage.get());
        EXPECT_EQ(storage->refCount(), 2);
        EXPECT_TRUE(stream.setElement(4, test::record(*mRecord, 4, "four")));
    }
    EXPECT_EQ(storage->refCount(), 1);
    EXPECT_TRUE(storage->hasElement(4));
    EXPECT_EQ(test::thrownBy([] { Stream(static_cast<StreamImpl*>(nullptr)); }),
              "invalid_argument: Null implementation of a Stream.");
}

TEST_F(StreamTest, SetElement_TakesOnlyDataOfItsVeryStructure)
{
    const auto equal = test::recordStructure();
    for (const bool isDense : {false, true})
    {
        Stream stream = streamWith({1}, isDense);
        EXPECT_FALSE(stream.setElement(1, Handle(*equal)));
        EXPECT_FALSE(stream.setElement(1, Handle(*mRecord, nullptr)));
        EXPECT_FALSE(stream.setElement(7, Handle(*mRecord, nullptr)));
        EXPECT_FALSE(stream.hasElement(7));
        EXPECT_TRUE(stream.element(7).usesStructure(*mRecord));
        EXPECT_EQ(test::recordText(stream, 1), "1 l1");
    }
}

TEST_F(StreamTest, ElementsWithoutSize_AreStoredWithoutABlock)
{
    const Ref<Structure> empty(Structure::create());
    for (const bool isDense : {false, true})
    {
        Stream stream(*empty, "nothing");
        stream.useDenseStorage(isDense);
        EXPECT_TRUE(stream.setElement(1, Handle(*empty)));
        EXPECT_TRUE(stream.hasElement(1));
        EXPECT_FALSE(stream.element(1).hasData());
        EXPECT_TRUE(stream.reindexElement(1, 4));
        EXPECT_TRUE(stream.swapElements(4, 4));
        const std::vector<unsigned int> numbers = stream.numericIndices();
        EXPECT_EQ(numbers, isDense ? std::vector<unsigned int>({0, 1, 2, 3, 4}) : std::vector<unsigned int>({4}));
        Stream copy(stream);
        EXPECT_TRUE(copy.makeUnique());
        EXPECT_TRUE(copy.hasElement(4));
        EXPECT_EQ(copy.reindexElement(4, 4294967295U), !isDense); // cannot be counted
        EXPECT_EQ(copy.elementCount(), isDense ? 5U : 1U);
        EXPECT_TRUE(copy.removeElement(4));
        EXPECT_TRUE(copy.clear());
    }
}

TEST_F(StreamTest, ElementsSetFromTheirOwnStream_AreCopiedBeforeTheOldOnesGo)
{
    for (const bool isDense : {false, true})
    {
        SCOPED_TRACE(isDense ? "dense" : "mapped");
        Stream stream = streamWith({0, 3}, isDense);
        EXPECT_TRUE(stream.setElement(3, stream.element(3)));
        EXPECT_TRUE(stream.setElement(0, stream.element(3)));
        const Stream neighbour = streamWith({0}, isDense); // so that a dense block cannot grow where it is
        const Handle borrowed = stream.element(0);
        EXPECT_TRUE(stream.setElement(50000, borrowed));
        StreamIterator position = stream.begin();
        EXPECT_TRUE(stream.setElement(0, *position));
        EXPECT_EQ(test::recordText(stream, 0), "3 l3");
        EXPECT_EQ(test::recordText(stream, 3), "3 l3");
        const Stream& itself = stream;
        stream = itself;
        EXPECT_EQ(test::recordText(stream, 50000), "3 l3");
    }
}

TEST_F(StreamTest, HandlesMovedOutOfAWalk_LeaveTheRestOfItAlone)
{
    for (const bool isDense : {false, true})
    {
        SCOPED_TRACE(isDense ? "dense" : "mapped");
        Stream stream = streamWith({0, 1}, isDense);
        std::string walked;
        for (StreamIterator position = stream.begin(); position.valid(); ++position)
        {
            const Handle taken(std::move(*position));
            walked += test::recordText(taken) + ", ";
        }
        EXPECT_EQ(walked, "0 l0, 1 l1, ");
        EXPECT_TRUE(stream.setElement(0, test::record(*mRecord, 7, "seven")));
        EXPECT_EQ(test::recordText(stream, 0), "7 seven");
    }
}

TEST_F(StreamTest, Merge_StopsAtTheFirstRefusal)
{
    Stream target = streamWith({1, 2});
    const auto equal = test::recordStructure();
    Stream foreign(*equal, "foreign");
    EXPECT_TRUE(target.mergeStream(foreign));
    foreign.setElement(0, test::record(*equal, 1, "x"));
    EXPECT_FALSE(target.mergeStream(foreign));
    EXPECT_EQ(contents(target), "1: 1 l1, 2: 2 l2, ");
}

TEST_F(StreamTest, SetIndexType_NeedsAnEmptyStreamAndMapsIt)
{
    Stream stream = streamWith({0});
    EXPECT_EQ(test::thrownBy([&] { stream.setIndexType("nonsense"); }), "eCreationErrors: 0");
    EXPECT_TRUE(stream.setIndexType("numeric"));
    EXPECT_FALSE(stream.setIndexType("pair"));
    EXPECT_EQ(stream.indexType(), "numeric");

    Stream dense(*mRecord, "dense");
    dense.setUseDefaults(true);
    EXPECT_TRUE(dense.useDenseStorage(true));
    EXPECT_FALSE(dense.setUseDefaults(true)); // a change of storage does not take the flag along
    Stream sharer(dense);
    EXPECT_TRUE(dense.setIndexType("pair"));
    EXPECT_TRUE(dense.useDenseStorage(false)); // it is mapped already
    EXPECT_EQ(dense.indexType(), "pair");
    EXPECT_EQ(dense.name(), "dense");
    EXPECT_TRUE(dense.useDefaults());
    EXPECT_EQ(sharer.indexType(), "numeric");
    EXPECT_TRUE(dense.setElement(IndexPair(1, 2), Handle(*mRecord)));
}

TEST_F(StreamTest, SetIndexType_MayBeGivenTheStreamsOwnName)
{
    Stream stream(*mRecord, "string");
    stream.useDenseStorage(true);
    EXPECT_TRUE(stream.setIndexType(stream.name()));
    EXPECT_EQ(stream.indexType(), "string");
}

TEST_F(StreamTest, UseDenseStorage_ReadsComplexIndicesAsZero)
{
    Stream texts(*mRecord, "texts");
    texts.setIndexType("string");
    texts.setElement(IndexString("a"), test::record(*mRecord, 1, "first"));
    texts.setElement(IndexString("b"), test::record(*mRecord, 2, "last"));
    EXPECT_FALSE(texts.useDenseStorage(true));
    EXPECT_EQ(contents(texts), "0: 2 last, ");
    EXPECT_EQ(texts.indexType(), "numeric");
}

TEST_F(StreamTest, UseDenseStorage_KeepsTheStorageThatHasRoomForAllElements)
{
    Stream stream = streamWith({3});
    stream.setElement(0xFFFFFFFF, test::record(*mRecord, 9, "an index that cannot be counted"));
    EXPECT_FALSE(stream.useDenseStorage(true));
    EXPECT_EQ(stream.elementCount(), 2U);
    EXPECT_TRUE(stream.hasElement(0xFFFFFFFF));
}

TEST_F(StreamTest, SetStructure_ReleasesTheOldOneAndNeedsAnEmptyStream)
{
    const auto other = Structure::make("Other", {{Member::kInt32, 1, "i"}});
    Stream stream = streamWith({0});
    EXPECT_FALSE(stream.setStructure(*other));
    EXPECT_EQ(other->refCount(), 1);
    stream.clear();
    for (StreamIterator position = stream.begin(); position.valid();)
        ++position;
    EXPECT_TRUE(stream.setStructure(*other));
    EXPECT_EQ(&stream.structure(), other.get());
    EXPECT_TRUE(stream.setElement(0, Handle(*other)));
    StreamIterator position = stream.begin();
    ++position;
    EXPECT_TRUE(position->usesStructure(*other));
    EXPECT_EQ(mRecord->refCount(), 1);
}

TEST_F(StreamTest, Rebase_KeepsTheElementsAndLeavesSharersOnTheOldStructure)
{
    const Ref<Structure> twin(new Structure(*mRecord));
    const Ref<Structure> other = Structure::make("Record", {{Member::kUInt8, 1, "number"}});
    for (const bool isDense : {false, true})
    {
        SCOPED_TRACE(isDense);
        Stream stream = streamWith({0, 2}, isDense);
        EXPECT_EQ(stream.isDense(), isDense);
        const std::string before = contents(stream);
        const Stream sharer(stream);
        EXPECT_FALSE(stream.rebase(*other));
        EXPECT_TRUE(stream.rebase(*mRecord));
        EXPECT_TRUE(stream.element(0).data() == sharer.element(0).data()) << "nothing was to be done";
        EXPECT_TRUE(stream.rebase(*twin));
        EXPECT_EQ(&stream.structure(), twin.get());
        EXPECT_EQ(&sharer.structure(), mRecord.get());
        EXPECT_EQ(stream.isDense(), isDense);
        EXPECT_EQ(contents(stream), before);
        EXPECT_TRUE(stream.setElement(9, test::record(*twin, 9, "l9")));
        EXPECT_EQ(contents(sharer), before);
    }
    Stream texts(*mRecord, "texts");
    texts.setIndexType("string");
    texts.setElement(IndexString("a b"), test::record(*mRecord, 1, "one"));
    EXPECT_TRUE(texts.rebase(*twin));
    EXPECT_EQ(texts.indexType() + "; " + contents(texts), "string; a b: 1 one, ");
}

TEST_F(StreamGoldenTest, Debug_OfTheClassTellsItsCounts)
{
    const Stream stream(*mRecord, "s");
    EXPECT_EQ(test::printed<Stream>(nullptr), "vumo::Data::Stream : " + std::to_string(Stream::_objectsCreated) +
                                                  " created, " + std::to_string(Stream::_objectsAlive) + " alive\n");
    EXPECT_EQ(test::footprintOf<Stream>(nullptr).totalSize(), 2 * sizeof(Stream::_objectsAlive));
}

TEST_F(StreamGoldenTest, Debug_PrintsTheHeaderAndTheStorage)
{
    Stream stream = streamWith({1});
    stream.setElement(IndexPair(3, 7), Handle(*mRecord));
    EXPECT_TRUE(stream.setElementRange(2, IndexPair(1, 2)));
    EXPECT_EQ(stream.elementCount(), 2U);
    const std::string header = "Data Stream 'records' uses structure 'Record' with index type 'numeric'\n";
    EXPECT_EQ(test::printedWithoutAddresses(&stream), header + "Data Stream (Mapped)\n"
                                                               "{\n"
                                                               "    PTR: ADDRESS\n"
                                                               "    Lowest valid index = 2\n"
                                                               "    Highest valid index = 1 2\n"
                                                               "    Stream Elements\n"
                                                               "    {\n"
                                                               "        Element count = 2\n"
                                                               "        Index (1), Handle (1 elements: [ l1 ])\n"
                                                               "        Index (3 7), Handle (1 elements: [ 0 ])\n"
                                                               "    }\n"
                                                               "}\n");
    const std::size_t elements = 2 * (sizeof(Index) + sizeof(Handle));
    EXPECT_EQ(test::footprintOf(&stream).totalSize(), sizeof(Stream) + sizeof(StreamImplMapped) + elements);
    stream.removeElement(IndexPair(3, 7));
    stream.useDenseStorage(true);
    EXPECT_EQ(test::printed(&stream), header + "Data Stream\n"
                                               "{\n"
                                               "    Highest valid index = 2\n"
                                               "    Number allocated    = 240\n"
                                               "    Stream Elements\n"
                                               "    {\n"
                                               "        Index (0), Handle (1 elements: [ 0 ])\n"
                                               "        Index (1), Handle (1 elements: [ 1 ])\n"
                                               "    }\n"
                                               "}\n");
    EXPECT_EQ(test::footprintOf(&stream).totalSize(), sizeof(Stream) + sizeof(StreamImplDense) + 240 * 17);
}
} // namespace
} // namespace vumo::Data
