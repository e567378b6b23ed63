#include "tests/support/DataFixtures.h"
#include "tests/support/Random.h"
#include "vumo/data/Stream.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace vumo::Data
{
namespace
{
constexpr int kSteps = 20000;
constexpr int kStepsToComparison = 20;
constexpr unsigned int kPlaces = 12;

/// The index of a place; the order of the places is the order of their indices.
Index indexOf(const std::string& type, unsigned int place)
{
    if (type == "pair")
        return IndexPair(place / 5, place % 5);
    if (type == "string")
        return IndexString(std::string(place / 4, 'x') + std::string(place % 4, 'a'));
    return place;
}

/// What a stream should hold: records, as recordText() gives them, by place. The places of dense storage
/// hold default values where nothing was set, and keep what they hold when they are counted no more.
class StreamModel
{
public:
    unsigned int count() const { return mIsDense ? mCount : static_cast<unsigned int>(mElements.size()); }
    bool has(unsigned int i) const { return mIsDense ? i < mCount : mElements.count(i) > 0; }

    std::string at(unsigned int i) const
    {
        const auto found = mElements.find(i);
        return !has(i) ? "none" : found == mElements.end() ? "0 " : found->second;
    }

    void set(unsigned int i, const std::string& element)
    {
        mElements[i] = element;
        mCount = std::max(mCount, i + 1);
    }

    void remove(unsigned int i)
    {
        if (has(i))
            mElements.erase(i);
    }

    bool reindex(unsigned int from, unsigned int to)
    {
        if (!has(from))
            return false;
        const std::string moved = at(from);
        set(to, moved);
        mElements.erase(from);
        if (!mIsDense && from == to)
            set(to, moved); // dense storage resets the source even so
        return true;
    }

    bool swap(unsigned int a, unsigned int b)
    {
        if (!has(a) || !has(b))
            return false;
        const std::string before = at(a);
        set(a, at(b));
        set(b, before);
        return true;
    }

    bool setRange(unsigned int first, unsigned int last)
    {
        const unsigned int n = last - first + 1;
        if (!mIsDense || n == 0 || n == mCount)
            return !mIsDense || n == mCount;
        if (n < mCount)
            mElements.erase(mElements.lower_bound(n), mElements.lower_bound(mCount));
        mCount = n < mCount ? n - 1 : n;
        return true;
    }

    void merge(const StreamModel& other)
    {
        for (unsigned int i = 0; i < other.count(); ++i)
        {
            if (other.has(i))
                set(i, other.at(i));
        }
    }

    bool setDense(bool isDense)
    {
        if (isDense == mIsDense)
            return true;
        StreamModel converted;
        converted.mIsDense = isDense;
        for (unsigned int i = 0; i <= kPlaces; ++i)
        {
            if (has(i))
                converted.set(i, at(i));
        }
        *this = converted;
        return count() == 0;
    }

private:
    std::map<unsigned int, std::string> mElements;
    unsigned int mCount = 0; // of dense storage
    bool mIsDense = false;
};

class StreamPropertyTest : public test::DataTest
{
protected:
    /// Does one random call to the stream and to its model; both must give the same result.
    void act()
    {
        const unsigned int i = mRandom.below(kPlaces);
        const unsigned int j = mRandom.below(kPlaces);
        switch (mRandom.below(10))
        {
        case 0:
            EXPECT_EQ(mStream.setElement(at(i), mStream.element(at(j))), mModel.has(j));
            if (mModel.has(j))
                mModel.set(i, mModel.at(j));
            break;
        case 1:
            EXPECT_TRUE(mStream.removeElement(at(i)));
            mModel.remove(i);
            break;
        case 2:
            EXPECT_EQ(mStream.reindexElement(at(i), at(j)), mModel.reindex(i, j));
            break;
        case 3:
            EXPECT_EQ(mStream.swapElements(at(i), at(j)), mModel.swap(i, j));
            break;
        case 4:
            if (i <= j + 1)
            {
                EXPECT_EQ(mStream.setElementRange(i, j), mModel.setRange(i, j));
            }
            break;
        case 5:
            mCopy = mStream;
            mCopyModel = mModel;
            EXPECT_TRUE(mStream.makeUnique());
            EXPECT_FALSE(mStream.makeUnique());
            break;
        case 6:
            EXPECT_TRUE(mStream.mergeStream(mStream));
            EXPECT_TRUE(mStream.mergeStream(mCopy));
            if (mType == Index::theTypeName()) // elements at other indices are left out
                mModel.merge(mCopyModel);
            break;
        case 7:
            if (mSwitchesStorage)
            {
                const bool isDense = mRandom.below(2) > 0;
                EXPECT_EQ(mStream.useDenseStorage(isDense), mModel.setDense(isDense));
            }
            break;
        default:
            set(i);
        }
    }

    void set(unsigned int i)
    {
        const unsigned int number = mRandom.below(256);
        const std::string label(mRandom.below(40), 'x');
        EXPECT_TRUE(mStream.setElement(at(i), test::record(*mRecord, number, label)));
        mModel.set(i, std::to_string(number) + " " + label);
    }

    void compare(const Stream& stream, const StreamModel& model) const
    {
        ASSERT_EQ(stream.elementCount(), model.count());
        StreamIterator position = stream.begin();
        for (unsigned int i = 0; i <= kPlaces; ++i)
        {
            ASSERT_EQ(stream.hasElement(at(i)), model.has(i)) << i;
            ASSERT_EQ(test::recordText(stream, at(i)), model.at(i)) << i;
            if (!model.has(i))
                continue;
            ASSERT_TRUE(position.valid() && position.index() == at(i)) << i;
            ASSERT_EQ(test::recordText(*position), model.at(i));
            ++position;
        }
        ASSERT_TRUE(position == stream.end());
    }

    void compareAlongARandomWalk(const std::string& indexType)
    {
        mType = indexType;
        SCOPED_TRACE(mType + " indices, " + mRandom.seedText());
        EXPECT_TRUE(mStream.setIndexType(mType));
        for (int step = 0; step < kSteps && !HasFailure(); ++step)
        {
            SCOPED_TRACE(step);
            act();
            if (step % kStepsToComparison == 0)
            {
                compare(mStream, mModel);
                compare(mCopy, mCopyModel);
            }
        }
    }

    Index at(unsigned int place) const { return indexOf(mType, place); }

    /// Four of these elements fill a page, so a dense block grows within the places.
    Ref<Structure> mRecord = Structure::make(
        "Record", {{Member::kUInt8, 1, "number"}, {Member::kString, 1, "label"}, {Member::kUInt8, 1001, "more"}});
    test::Random mRandom;
    std::string mType;
    bool mSwitchesStorage = false;
    Stream mStream{*mRecord, "s"};
    StreamModel mModel;
    Stream mCopy{*mRecord, "copy"}; // as the stream was at some step
    StreamModel mCopyModel;
};

TEST_F(StreamPropertyTest, MappedStorage_AnswersLikeAMap)
{
    compareAlongARandomWalk("numeric");
}

TEST_F(StreamPropertyTest, MappedStorageOfPairs_AnswersLikeAMap)
{
    compareAlongARandomWalk("pair");
}

TEST_F(StreamPropertyTest, MappedStorageOfTexts_AnswersLikeAMap)
{
    compareAlongARandomWalk("string");
}

TEST_F(StreamPropertyTest, DenseStorage_AnswersLikeAnArrayOfDefaults)
{
    EXPECT_TRUE(mStream.useDenseStorage(true));
    EXPECT_TRUE(mModel.setDense(true));
    compareAlongARandomWalk("numeric");
}

TEST_F(StreamPropertyTest, ChangesOfStorage_KeepEveryElement)
{
    mSwitchesStorage = true;
    compareAlongARandomWalk("numeric");
}
} // namespace
} // namespace vumo::Data
