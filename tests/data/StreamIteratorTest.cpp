#include "vumo/data/StreamIterator.h"

#include "tests/support/DataFixtures.h"
#include "vumo/data/Stream.h"
#include "vumo/data/StreamIteratorImpl.h"

namespace vumo::Data
{
namespace
{
using StreamIteratorTest = test::RecordTest;

TEST_F(StreamIteratorTest, WithoutAStream_EveryUseThrows)
{
    StreamIterator nothing;
    const StreamIterator constNothing;
    EXPECT_FALSE(nothing.valid());
    EXPECT_FALSE(nothing == nothing);
    EXPECT_TRUE(nothing != nothing);
    EXPECT_FALSE(nothing == Stream().end());
    EXPECT_TRUE(Stream().end() != nothing);
    const std::string thrown = "runtime_error: No Stream Iterator implementation";
    const std::string thrownByConst = "runtime_error: No const Stream Iterator implementation";
    EXPECT_EQ(test::thrownBy([&] { *nothing; }), thrown);
    EXPECT_EQ(test::thrownBy([&] { nothing.operator->(); }), thrown);
    EXPECT_EQ(test::thrownBy([&] { ++nothing; }), thrown);
    EXPECT_EQ(test::thrownBy([&] { nothing++; }), thrown);
    EXPECT_EQ(test::thrownBy([&] { nothing.impl(); }), thrown);
    EXPECT_EQ(test::thrownBy([&] { constNothing.impl(); }), thrown);
    EXPECT_EQ(test::thrownBy([&] { *constNothing; }), thrownByConst);
    EXPECT_EQ(test::thrownBy([&] { constNothing.operator->(); }), thrownByConst);
    EXPECT_EQ(test::thrownBy([&] { constNothing.index(); }), thrownByConst);
    const StreamIterator copy(nothing);
    nothing = copy;
    EXPECT_FALSE(nothing.valid());
}

TEST_F(StreamIteratorTest, EndPositions_AreEqualFixedAndStay)
{
    for (const bool isDense : {false, true})
    {
        SCOPED_TRACE(isDense ? "dense" : "mapped");
        Stream stream(*mRecord, "s");
        stream.useDenseStorage(isDense);
        EXPECT_TRUE(stream.begin() == stream.end());
        EXPECT_FALSE(stream.begin().valid());
        EXPECT_EQ(test::thrownBy([&] { *stream.begin(); }), "out_of_range: Iterator not at a valid position");
        stream.setElement(0, Handle(*mRecord));
        StreamIterator stepped = stream.begin();
        EXPECT_TRUE(stepped.valid());
        for (int i = 0; i < 3; ++i)
        {
            ++stepped;
            EXPECT_FALSE(stepped.valid());
            EXPECT_EQ(stepped.index().index(), 4294967295U);
            EXPECT_TRUE(stepped == stream.end());
            EXPECT_FALSE(stepped->hasData());
        }
        const StreamIterator original = stream.end();
        const StreamIterator end(original);
        EXPECT_EQ(end.index().index(), 4294967295U);
        EXPECT_EQ(test::thrownBy([&] { *end; }), "out_of_range: Iterator not at a valid position");
        EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: Iterator not at a valid position");
        EXPECT_TRUE(++StreamIterator(end) == end);
        Stream copy(stream);
        copy.makeUnique();
        EXPECT_TRUE(copy.end() != end);
        EXPECT_TRUE(copy.begin() != stream.begin());
    }
}

TEST_F(StreamIteratorTest, AnElementAtTheEndsIndex_IsNotTheEnd)
{
    Stream stream(*mRecord, "s");
    stream.setElement(4294967295U, Handle(*mRecord));
    StreamIterator position = stream.begin();
    EXPECT_TRUE(position != stream.end());
    EXPECT_TRUE(++position == stream.end());
}

TEST_F(StreamIteratorTest, PostfixAndCopies_KeepTheirPlaces)
{
    for (const bool isDense : {false, true})
    {
        Stream stream(*mRecord, "s");
        stream.useDenseStorage(isDense);
        for (unsigned int i = 0; i < 3; ++i)
            stream.setElement(i, test::record(*mRecord, i, "l"));
        StreamIterator position = stream.begin();
        const StreamIterator before = position++;
        EXPECT_EQ(before.index().index(), 0U);
        EXPECT_EQ(position.index().index(), 1U); // unlike other iterators' postfix this one steps
        StreamIterator copy(position);
        ++copy;
        EXPECT_EQ(test::recordText(*before), "0 l");
        EXPECT_EQ(test::recordText(*position), "1 l");
        EXPECT_EQ(test::recordText(*copy), "2 l");
        position = copy;
        const StreamIterator& itself = position;
        position = itself;
        EXPECT_TRUE(position == copy);
        EXPECT_EQ(test::recordText(*position), "2 l");
    }
}

TEST_F(StreamIteratorTest, AClearedDenseStream_IsWalkedWithoutData)
{
    Stream stream(*mRecord, "s");
    stream.useDenseStorage(true);
    stream.setElement(1, Handle(*mRecord));
    stream.clear();
    StreamIterator position = stream.begin();
    for (unsigned int i = 0; i < 2; ++i)
    {
        EXPECT_FALSE(position.valid());
        EXPECT_FALSE(position->hasData());
        EXPECT_EQ(position.index().index(), i);
        ++position;
    }
    EXPECT_TRUE(position == stream.cend());
}

TEST_F(StreamIteratorTest, ADenseStreamThatShrinks_EndsAWalk)
{
    Stream stream(*mRecord, "s");
    stream.useDenseStorage(true);
    stream.setElement(9, Handle(*mRecord));
    StreamIterator position = stream.begin();
    for (int i = 0; i < 4; ++i)
        ++position;
    stream.setElementRange(0, 2);
    ++position;
    EXPECT_FALSE(position.valid());
    EXPECT_FALSE(position->hasData());
    EXPECT_TRUE(position == stream.end());
}

/// An iterator with opinions of its own about what it shows.
class OtherIterator : public StreamIteratorImpl
{
public:
    /// Has a part that seems to be at an element.
    explicit OtherIterator(const StreamIteratorImpl& atElement) : StreamIteratorImpl(atElement) {}
    Handle& operator*() override { return mShown; }
    const Handle& operator*() const override { return mShown; }
    Handle* operator->() override { return &mShown; }
    const Handle* operator->() const override { return &mShown; }
    bool valid() const override { return false; }
    StreamIteratorImpl& operator++() override { return ++mSteps, *this; }
    StreamIteratorImpl* operator++(int) override { return clone(); }
    StreamIteratorImpl* clone() const override { return new OtherIterator(*this); }
    Index index() const override { return mSteps; }
    const StreamImpl* myStream() const override { return nullptr; }

    Handle mShown;
    unsigned int mSteps = 0;
};

TEST_F(StreamIteratorTest, AnIteratorOfAnotherClass_IsAskedForEverything)
{
    Stream stream(*mRecord, "s");
    stream.setElement(0, Handle(*mRecord));
    for (const bool isDense : {false, true})
    {
        stream.useDenseStorage(isDense);
        const StreamIterator first = stream.begin();
        auto* const other = new OtherIterator(*first.impl());
        StreamIterator position(other);
        const StreamIterator& constPosition = position;
        EXPECT_FALSE(position.valid());
        EXPECT_EQ(&*position, &other->mShown);
        EXPECT_EQ(position.operator->(), &other->mShown);
        EXPECT_EQ(&*constPosition, &other->mShown);
        EXPECT_EQ(constPosition.operator->(), &other->mShown);
        ++position;
        EXPECT_EQ(position.index().index(), 1U);
    }
}
} // namespace
} // namespace vumo::Data
