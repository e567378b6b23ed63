#include "tests/support/DataFixtures.h"
#include "tests/support/Random.h"

#include <map>
#include <memory>
#include <string>

namespace vumo::Data
{
namespace
{
constexpr int kSteps = 20000;
constexpr int kStepsToComparison = 50;
constexpr unsigned int kChannelCalls = 8;
constexpr unsigned int kAllCalls = 14;

/// What the classes should hold, by index and by name; the elements as recordText() gives them.
using StreamModel = std::map<unsigned int, std::string>;
using ChannelModel = std::map<std::string, StreamModel>;
using AssociationsModel = std::map<std::string, ChannelModel>;

AssociationsModel contentsOf(const Associations& associations)
{
    AssociationsModel contents;
    for (const Channel& channel : associations)
    {
        ChannelModel& streams = contents[channel.name()];
        for (const Stream* const stream : channel)
        {
            StreamModel& elements = streams[stream->name()];
            for (StreamIterator position = stream->begin(); position.valid(); ++position)
                elements[position.index()] = test::recordText(*position);
        }
        EXPECT_EQ(streams.size(), channel.size());
    }
    EXPECT_EQ(contents.size(), associations.size());
    return contents;
}

/// Renames an entry. Where the new name is taken, a channel loses the renamed stream.
template <class Entry>
bool rename(std::map<std::string, Entry>& entries, const std::string& from, const std::string& to, bool isLost)
{
    if (entries.count(from) == 0 || from == to)
        return entries.count(from) > 0 && isLost; // taken out, it is not there to be in its own way
    const bool isTaken = entries.count(to) > 0;
    if (!isTaken)
        entries[to] = entries[from];
    if (!isTaken || isLost)
        entries.erase(from);
    return !isTaken;
}

/// Two associations objects that share their contents now and then, as their models do.
class ContainerPropertyTest : public test::RecordTest
{
protected:
    std::string anyName() { return std::string(1, static_cast<char>('a' + mRandom.below(4))); }

    Stream anyStream(const std::string& name, StreamModel& model)
    {
        Stream stream(*mRecord, name);
        for (unsigned int count = mRandom.below(3); count > 0; --count)
            setElement(stream, model);
        return stream;
    }

    void setElement(Stream& stream, StreamModel& model)
    {
        const unsigned int index = mRandom.below(4);
        const unsigned int number = mRandom.below(256);
        EXPECT_TRUE(stream.setElement(index, test::record(*mRecord, number, stream.name())));
        model[index] = std::to_string(number) + " " + stream.name();
    }

    /// Does one random call to a channel and to its model; both must give the same result.
    void actOnChannel(unsigned int call, Channel& channel, ChannelModel& model)
    {
        const unsigned int index = mRandom.below(4);
        const std::string name = anyName();
        const std::string other = anyName();
        Stream* const stream = channel.findDataStream(name);
        const auto found = model.find(name);
        ASSERT_EQ(stream != nullptr, found != model.end());
        bool isDone = false;
        switch (call)
        {
        case 0:
            model[name].clear();
            EXPECT_EQ(channel.setDataStream(anyStream(name, model[name]))->name(), name);
            break;
        case 1:
            EXPECT_EQ(channel.removeDataStream(name), model.erase(name) > 0);
            break;
        case 2:
            EXPECT_EQ(channel.renameDataStream(name, other), rename(model, name, other, true));
            break;
        case 3:
            for (auto& entry : model)
                entry.second[index] = "0 ";
            EXPECT_EQ(channel.addElement(index), !model.empty());
            break;
        case 4:
            for (auto& entry : model)
                isDone |= entry.second.erase(index) > 0;
            EXPECT_EQ(channel.removeElement(index), isDone);
            break;
        case 5:
            changeACopy(channel, model.empty());
            break;
        default:
            if (stream)
                setElement(*stream, found->second);
        }
    }

    /// Changes a copy that was made unique, and so nothing else.
    void changeACopy(Channel& channel, bool isEmpty)
    {
        Channel copy(channel);
        EXPECT_TRUE(copy == channel);
        EXPECT_EQ(copy.makeUnique(), !isEmpty);
        EXPECT_TRUE(copy != channel);
        EXPECT_FALSE(channel.makeUnique());
        copy.addElement(mRandom.below(4));
        copy.setDataStream(Stream(*mRecord, anyName()));
        copy.renameDataStream(anyName(), anyName());
    }

    void actOnAssociations(unsigned int call, Associations& object, std::shared_ptr<AssociationsModel>& model)
    {
        const std::string name = anyName();
        const std::string other = anyName();
        const unsigned int n = mRandom.below(2);
        Channel channel(name);
        ChannelModel streams;
        switch (call)
        {
        case 8:
            EXPECT_EQ(object.channel(name).name(), name);
            model->insert({name, {}});
            break;
        case 9:
            channel.setDataStream(anyStream(other, streams[other]));
            object.setChannel(channel);
            (*model)[name] = streams;
            break;
        case 10:
            EXPECT_EQ(object.removeChannel(name), model->erase(name) > 0);
            break;
        case 11:
            EXPECT_EQ(object.renameChannel(name, other), rename(*model, name, other, false));
            break;
        case 12:
            object = mObjects[n];
            model = mModels[n];
            break;
        default:
            EXPECT_EQ(object.makeUnique(), makeUnique(model));
        }
    }

    /// Says, as the class does, whether there was a stream to copy.
    static bool makeUnique(std::shared_ptr<AssociationsModel>& model)
    {
        bool isCopied = false;
        for (const auto& channel : *model)
            isCopied |= model.use_count() > 1 && !channel.second.empty();
        model = std::make_shared<AssociationsModel>(*model);
        return isCopied;
    }

    void compareAlongARandomWalk(unsigned int calls)
    {
        SCOPED_TRACE(mRandom.seedText());
        for (const char* name : {"a", "b", "c", "d"})
            mObjects[0].channel(name);
        mObjects[1] = mObjects[0];
        mModels[1] = mModels[0] = std::make_shared<AssociationsModel>(contentsOf(mObjects[0]));
        for (int step = 0; step < kSteps && !HasFailure(); ++step)
        {
            SCOPED_TRACE(step);
            const unsigned int call = mRandom.below(calls);
            const unsigned int n = mRandom.below(2);
            const std::string name = anyName();
            Channel* const channel = mObjects[n].findChannel(name);
            ASSERT_EQ(channel != nullptr, mModels[n]->count(name) > 0);
            if (call >= kChannelCalls)
                actOnAssociations(call, mObjects[n], mModels[n]);
            else if (channel)
                actOnChannel(call, *channel, (*mModels[n])[name]);
            for (unsigned int i = 0; i < 2 && step % kStepsToComparison == 0; ++i)
                ASSERT_EQ(contentsOf(mObjects[i]), *mModels[i]);
        }
    }

    test::Random mRandom;
    Associations mObjects[2];
    std::shared_ptr<AssociationsModel> mModels[2];
};

TEST_F(ContainerPropertyTest, Channels_AnswerLikeMapsOfMaps)
{
    compareAlongARandomWalk(kChannelCalls);
}

TEST_F(ContainerPropertyTest, Associations_AnswerLikeMapsOfMaps)
{
    compareAlongARandomWalk(kAllCalls);
}
} // namespace
} // namespace vumo::Data
