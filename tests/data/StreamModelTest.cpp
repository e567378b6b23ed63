#include "tests/support/DataFixtures.h"
#include "tests/support/Random.h"
#include "vumo/data/Stream.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace vumo
{
namespace Data
{
namespace
{
constexpr unsigned int kIndices = 12;
constexpr char kNone[] = "none";
constexpr char kDefault[] = "0 ";

/// What a stream should hold: its elements by index, as recordText() gives them.
class StreamModel
{
public:
    virtual ~StreamModel() = default;

    virtual unsigned int count() const = 0;
    virtual bool has(unsigned int i) const = 0;
    virtual std::string at(unsigned int i) const = 0;
    virtual void set(unsigned int i, const std::string& element) = 0;
    virtual void remove(unsigned int i) = 0;
    virtual bool reindex(unsigned int from, unsigned int to) = 0;
    virtual bool setRange(unsigned int first, unsigned int last) = 0;

    bool swap(unsigned int a, unsigned int b)
    {
        if (!has(a) || !has(b))
            return false;
        std::swap(mElements[a], mElements[b]);
        return true;
    }

protected:
    std::map<unsigned int, std::string> mElements;
};

class MappedModel : public StreamModel
{
public:
    unsigned int count() const override { return static_cast<unsigned int>(mElements.size()); }
    bool has(unsigned int i) const override { return mElements.count(i) > 0; }
    std::string at(unsigned int i) const override { return has(i) ? mElements.at(i) : kNone; }
    void set(unsigned int i, const std::string& element) override { mElements[i] = element; }
    void remove(unsigned int i) override { mElements.erase(i); }
    bool setRange(unsigned int, unsigned int) override { return true; }

    bool reindex(unsigned int from, unsigned int to) override
    {
        if (!has(from))
            return false;
        auto node = mElements.extract(from);
        node.key() = to;
        mElements.erase(to);
        mElements.insert(std::move(node));
        return true;
    }
};

/// Slots without an entry hold default values, those at and above the count included.
class DenseModel : public StreamModel
{
public:
    unsigned int count() const override { return mCount; }
    bool has(unsigned int i) const override { return i < mCount; }

    std::string at(unsigned int i) const override
    {
        if (!has(i))
            return kNone;
        const auto found = mElements.find(i);
        return found == mElements.end() || found->second.empty() ? kDefault : found->second;
    }

    void set(unsigned int i, const std::string& element) override
    {
        mElements[i] = element;
        mCount = std::max(mCount, i + 1);
    }

    void remove(unsigned int i) override
    {
        if (has(i))
            mElements.erase(i);
    }

    bool reindex(unsigned int from, unsigned int to) override
    {
        if (!has(from))
            return false;
        set(to, at(from));
        mElements.erase(from);
        return true;
    }

    bool setRange(unsigned int first, unsigned int last) override
    {
        const unsigned int n = last - first + 1;
        if (n == 0)
            return false;
        if (n < mCount)
            mElements.erase(mElements.lower_bound(n), mElements.lower_bound(mCount));
        mCount = n < mCount ? n - 1 : n;
        return true;
    }

private:
    unsigned int mCount = 0;
};

class StreamPropertyTest : public test::DataTest
{
protected:
    /// Does one random call to the stream and to its model; both must give the same result.
    void act(Stream& stream, StreamModel& model)
    {
        const unsigned int i = mRandom.below(kIndices);
        const unsigned int j = mRandom.below(kIndices);
        switch (mRandom.below(8))
        {
        case 0:
            EXPECT_EQ(stream.setElement(i, stream.element(j)), model.has(j));
            if (model.has(j))
                model.set(i, model.at(j));
            break;
        case 1:
            EXPECT_TRUE(stream.removeElement(i));
            model.remove(i);
            break;
        case 2:
            EXPECT_EQ(stream.reindexElement(i, j), model.reindex(i, j));
            break;
        case 3:
            EXPECT_EQ(stream.swapElements(i, j), model.swap(i, j));
            break;
        case 4:
            if (i <= j + 1)
            {
                EXPECT_EQ(stream.setElementRange(i, j), model.setRange(i, j));
            }
            break;
        case 5:
            mCopy = stream;
            EXPECT_TRUE(stream.makeUnique());
            break;
        case 6:
            EXPECT_TRUE(stream.mergeStream(stream));
            break;
        default:
            set(stream, model, i);
        }
    }

    void set(Stream& stream, StreamModel& model, unsigned int i)
    {
        const unsigned int number = mRandom.below(256);
        const std::string label(mRandom.below(40), 'x');
        EXPECT_TRUE(stream.setElement(i, test::record(*mRecord, number, label)));
        model.set(i, std::to_string(number) + " " + label);
    }

    static void compare(const Stream& stream, const StreamModel& model)
    {
        ASSERT_EQ(stream.elementCount(), model.count());
        StreamIterator position = stream.begin();
        for (unsigned int i = 0; i <= kIndices; ++i)
        {
            ASSERT_EQ(stream.hasElement(i), model.has(i)) << i;
            ASSERT_EQ(test::recordText(stream, i), model.at(i)) << i;
            if (!model.has(i))
                continue;
            ASSERT_EQ(position.index().asString(), std::to_string(i));
            ASSERT_EQ(test::recordText(*position), model.at(i));
            ++position;
        }
        ASSERT_TRUE(position == stream.end());
    }

    void compareAlongARandomWalk(bool isDense, StreamModel& model)
    {
        SCOPED_TRACE(mRandom.seedText());
        Stream stream(*mRecord, "s");
        stream.useDenseStorage(isDense);
        for (int step = 0; step < 4000 && !HasFailure(); ++step)
        {
            SCOPED_TRACE(step);
            act(stream, model);
            compare(stream, model);
        }
    }

    Ref<Structure> mRecord = test::recordStructure();
    Stream mCopy; // shares with the stream under test now and then
    test::Random mRandom;
};

TEST_F(StreamPropertyTest, MappedStorage_AnswersLikeAMap)
{
    MappedModel model;
    compareAlongARandomWalk(false, model);
}

TEST_F(StreamPropertyTest, DenseStorage_AnswersLikeAnArrayOfDefaults)
{
    DenseModel model;
    compareAlongARandomWalk(true, model);
}

TEST_F(StreamPropertyTest, ChangesOfStorage_KeepEveryElement)
{
    SCOPED_TRACE(mRandom.seedText());
    for (int round = 0; round < 100 && !HasFailure(); ++round)
    {
        Stream stream(*mRecord, "s");
        DenseModel model; // what a mapped stream holds too, once it has been dense
        for (unsigned int n = mRandom.below(6); n > 0; --n)
            set(stream, model, mRandom.below(kIndices));
        for (const bool isDense : {true, false, true})
        {
            EXPECT_EQ(stream.useDenseStorage(isDense), model.count() == 0);
            compare(stream, model);
        }
    }
}
} // namespace
} // namespace Data
} // namespace vumo
