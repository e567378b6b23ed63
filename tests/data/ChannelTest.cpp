#include "vumo/data/Channel.h"

#include "tests/support/DataFixtures.h"
#include "tests/support/Random.h"

#include <initializer_list>
#include <map>

namespace vumo
{
namespace Data
{
namespace
{
class ChannelTest : public test::DataTest
{
protected:
    /// A stream with one record at index 0 that carries the stream's first name as its label.
    Stream stream(const std::string& name) const
    {
        Stream made(*mRecord, name);
        made.setElement(0, test::record(*mRecord, 0, name));
        return made;
    }

    Channel channelWith(std::initializer_list<const char*> names) const
    {
        Channel channel("vertex");
        for (const char* name : names)
            channel.setDataStream(stream(name));
        return channel;
    }

    static std::string namesOf(const Channel& channel)
    {
        std::string names;
        for (const Stream* const entry : channel)
            names += entry->name() + " ";
        return names;
    }

    Ref<Structure> mRecord = test::recordStructure();
};

using ChannelGoldenTest = ChannelTest;
using ChannelPropertyTest = ChannelTest;

TEST_F(ChannelTest, Streams_AreFoundByNameAndPlace)
{
    Channel channel = channelWith({"b", "a", "B", "ab"});
    const Channel& constChannel = channel;
    EXPECT_EQ(channel.name(), "vertex");
    EXPECT_EQ(Channel().name(), "Unnamed");
    EXPECT_EQ(namesOf(channel), "B a ab b ");
    EXPECT_EQ(channel.dataStream(1)->name(), "a");
    EXPECT_EQ(channel.dataStream(4), nullptr);
    EXPECT_EQ(channel.findDataStream("ab"), constChannel.dataStream(2));
    EXPECT_EQ(channel.dataStream("ab"), constChannel.findDataStream("ab"));
    EXPECT_EQ(channel.dataStream("absent"), nullptr);
    EXPECT_EQ(channel.dataStreamCount(), 4U);
    EXPECT_FALSE(channel.empty());
}

TEST_F(ChannelTest, SetDataStream_ReplacesTheNameAndSharesTheElements)
{
    Channel channel = channelWith({"a"});
    Stream second(*mRecord, "a");
    Stream* const stored = channel.setDataStream(second);
    EXPECT_NE(stored, &second);
    EXPECT_EQ(channel.size(), 1U);
    second.setElement(3, Handle(*mRecord));
    EXPECT_TRUE(stored->hasElement(3));
    EXPECT_EQ(channel.setDataStream(*stored), stored);
    Stream copy(*stored);
    EXPECT_TRUE(copy.makeUnique());
    EXPECT_NE(channel.setDataStream(copy), nullptr);
    EXPECT_EQ(channel.size(), 1U);
}

TEST_F(ChannelTest, Remove_TakesTheNameFromTheStreamItself)
{
    Channel channel = channelWith({"a", "b"});
    EXPECT_TRUE(channel.removeDataStream(channel.dataStream(0)->name()));
    EXPECT_FALSE(channel.removeDataStream("a"));
    EXPECT_EQ(namesOf(channel), "b ");
}

TEST_F(ChannelTest, Rename_IsSeenByAllSharersAndLosesAStreamToATakenName)
{
    Channel channel = channelWith({"a", "b", "c"});
    const Stream sharer(*channel.dataStream("a"));
    EXPECT_FALSE(channel.renameDataStream("absent", "x"));
    EXPECT_TRUE(channel.renameDataStream("a", "z"));
    EXPECT_EQ(sharer.name(), "z");
    EXPECT_EQ(namesOf(channel), "b c z ");
    EXPECT_TRUE(channel.renameDataStream("z", channel.dataStream("z")->name()));
    EXPECT_FALSE(channel.renameDataStream("b", channel.dataStream("c")->name()));
    EXPECT_EQ(namesOf(channel), "c z ");
    EXPECT_EQ(test::recordText(*channel.dataStream("c"), 0), "0 c");
    EXPECT_FALSE(channel.renameDataStream("z", "c"));
    EXPECT_EQ(sharer.name(), "c"); // the name changes even so
    EXPECT_EQ(namesOf(channel), "c ");
}

TEST_F(ChannelTest, RenamesBehindASetsBack_HideNoEntry)
{
    Channel renamer = channelWith({"b", "d", "f"});
    Channel other("other");
    for (const Stream* const entry : renamer)
        other.setDataStream(*entry);
    other.setDataStream(stream("c"));
    EXPECT_TRUE(renamer.renameDataStream("b", "x"));
    EXPECT_TRUE(renamer.renameDataStream("f", "a"));
    for (const char* name : {"x", "d", "c", "a"})
        EXPECT_NE(other.findDataStream(name), nullptr) << name;
    for (const char* name : {"b", "f"})
        EXPECT_EQ(other.findDataStream(name), nullptr) << name;
    EXPECT_NE(other.setDataStream(stream("b")), nullptr);
    EXPECT_NE(other.setDataStream(stream("x")), nullptr);
    EXPECT_EQ(other.size(), 5U);
    EXPECT_TRUE(renamer.renameDataStream("d", "c")); // the other channel has two of them now
    EXPECT_EQ(other.size(), 5U);
    EXPECT_TRUE(other.removeDataStream("c"));
    EXPECT_TRUE(other.removeDataStream("c"));
    EXPECT_FALSE(other.removeDataStream("c"));
    for (const char* name : {"x", "a", "b"})
        EXPECT_TRUE(other.removeDataStream(name)) << name;
    EXPECT_TRUE(other.empty());
}

TEST_F(ChannelTest, StreamsAssignedInPlace_AreFoundByTheirNewNames)
{
    Channel channel = channelWith({"a", "b", "c", "d", "e"});
    *channel.dataStream("a") = stream("z");
    for (const char* name : {"z", "b", "c", "d", "e"})
        EXPECT_NE(channel.findDataStream(name), nullptr) << name;
    EXPECT_EQ(channel.findDataStream("a"), nullptr);
}

TEST_F(ChannelTest, MakeUnique_ReachesTheElementsOnlyOfASharedChannel)
{
    Channel channel = channelWith({"a"});
    Stream outside(*channel.dataStream("a"));
    EXPECT_FALSE(channel.makeUnique());
    EXPECT_TRUE(outside.makeUnique()); // was still shared
    Channel copy(channel);
    EXPECT_TRUE(copy == channel);
    EXPECT_TRUE(copy.makeUnique());
    EXPECT_TRUE(copy != channel);
    EXPECT_FALSE(channel.makeUnique());
    Handle element = copy.dataStream("a")->element(0);
    test::setText(element, "label", "changed");
    EXPECT_EQ(test::recordText(*channel.dataStream("a"), 0), "0 a");
    Channel empty;
    Channel emptyCopy(empty);
    EXPECT_FALSE(emptyCopy.makeUnique()); // there was no stream to copy
    EXPECT_TRUE(emptyCopy != empty);
    const Channel& itself = copy;
    copy = itself;
    EXPECT_EQ(namesOf(copy), "a ");
}

TEST_F(ChannelTest, Elements_AreAddedAndRemovedWhereTheIndexTypeFits)
{
    Channel channel = channelWith({"numbers"});
    Stream pairs(*mRecord, "pairs");
    pairs.setIndexType("pair");
    channel.setDataStream(pairs);
    EXPECT_TRUE(channel.addElement(IndexPair(1, 2)));
    EXPECT_TRUE(pairs.element(IndexPair(1, 2)).isDefault());
    EXPECT_EQ(channel.dataStream("numbers")->elementCount(), 1U);
    EXPECT_FALSE(channel.addElement(IndexString("x")));
    EXPECT_TRUE(channel.addElement(0)); // back to default values
    EXPECT_TRUE(channel.dataStream("numbers")->element(0).isDefault());
    EXPECT_FALSE(channel.removeElement(5));
    EXPECT_TRUE(channel.removeElement(0));
    EXPECT_FALSE(channel.removeElement(0));
    EXPECT_TRUE(channel.removeElement(IndexPair(1, 2)));
    EXPECT_EQ(pairs.elementCount(), 0U);
    EXPECT_FALSE(Channel().addElement(0));
    EXPECT_FALSE(Channel().removeElement(0));
}

TEST_F(ChannelTest, ANullStream_IsNeverOrdered)
{
    const ChannelImpl::StreamCompare compare;
    const Stream some = stream("a");
    const std::string thrown = "invalid_argument: Null Stream found in Channel.";
    EXPECT_EQ(test::thrownBy([&] { compare(nullptr, &some); }), thrown);
    EXPECT_EQ(test::thrownBy([&] { compare(&some, nullptr); }), thrown);
}

TEST_F(ChannelPropertyTest, SharedRenames_KeepEveryStreamFindable)
{
    test::Random random;
    SCOPED_TRACE(random.seedText());
    const auto anyName = [&] { return std::string(1, static_cast<char>('a' + random.below(8))); };
    Channel channels[3];
    for (int round = 0; round < 4000; ++round)
    {
        Channel& channel = channels[random.below(3)];
        const Stream* const entry = channels[random.below(3)].dataStream(random.below(8));
        const unsigned int before = channel.size();
        const std::string name = anyName();
        switch (random.below(4))
        {
        case 0:
            ASSERT_EQ(channel.setDataStream(stream(name))->name(), name);
            break;
        case 1:
            if (entry)
                channel.setDataStream(*entry);
            break;
        case 2:
            channel.renameDataStream(name, anyName());
            ASSERT_GE(channel.size() + 1, before);
            break;
        default:
            const bool isRemoved = channel.removeDataStream(name);
            ASSERT_EQ(channel.size(), isRemoved ? before - 1 : before);
        }
        for (Channel& each : channels)
        {
            std::map<std::string, unsigned int> names;
            for (const Stream* const present : each)
                ++names[present->name()];
            for (char letter = 'a'; letter < 'i'; ++letter)
                ASSERT_EQ(each.findDataStream(std::string(1, letter)) != nullptr, names.count({letter}) > 0) << letter;
        }
    }
}

TEST_F(ChannelGoldenTest, Debug_NamesTheChannelAndPrintsItsStreams)
{
    Channel channel("vertex");
    EXPECT_EQ(test::printed(&channel), "Empty Channel\n");
    channel.setDataStream(Stream(*mRecord, "a"));
    EXPECT_EQ(test::printedWithoutAddresses(&channel),
              "Channel vertex\n"
              "{\n"
              "    Stream Data Stream 'a' uses structure 'Record' with index type 'numeric'\n"
              "    Data Stream (Mapped)\n"
              "    {\n"
              "        PTR: ADDRESS\n"
              "        Lowest valid index = 0\n"
              "        Highest valid index = 0\n"
              "        Stream Elements\n"
              "        {\n"
              "            Element count = 0\n"
              "        }\n"
              "    }\n"
              "}\n");
    const unsigned long long empty = test::footprintOf(static_cast<const Channel*>(&channel)).totalSize();
    channel.dataStream("a")->setElement(1, Handle(*mRecord));
    EXPECT_EQ(test::footprintOf(&channel).totalSize(), empty + sizeof(Index) + sizeof(Handle));
}

TEST_F(ChannelTest, Iterators_StepOnlyByThePrefixForm)
{
    const Channel channel = channelWith({"a", "b"});
    ChannelIterator position = channel.begin();
    EXPECT_EQ((*position++)->name(), "a");
    EXPECT_EQ((*position)->name(), "a");
    EXPECT_EQ(test::printed(&position), "ChannelIterator positioned at Stream a.\n");
    ChannelIterator copy(position);
    ++copy;
    EXPECT_EQ(copy->name(), "b");
    EXPECT_EQ(position->name(), "a");
    EXPECT_TRUE(copy != position);
    position = copy;
    EXPECT_TRUE(copy == position);
    const ChannelIterator& itself = position;
    position = itself;
    EXPECT_EQ(position->name(), "b");
    ++position;
    EXPECT_TRUE(++position == channel.end());
    EXPECT_TRUE(position == ChannelIterator(channel, static_cast<IterLocation>(7)));
    EXPECT_FALSE(position.valid());
    EXPECT_EQ(test::printed(&position), "ChannelIterator postioned at the end.\n");
    EXPECT_TRUE(Channel().end() != Channel().end());
}

TEST_F(ChannelTest, IteratorsAtTheEnd_NameTheOperationThatFailed)
{
    ChannelIterator end = Channel().end();
    const ChannelIterator constEnd = end;
    EXPECT_EQ(test::thrownBy([&] { *end; }), "out_of_range: ChannelImpl::Iterator::operator*");
    EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: ChannelImpl::Iterator::operator->");
    EXPECT_EQ(test::thrownBy([&] { constEnd.operator->(); }), "out_of_range: const ChannelImpl::Iterator::operator->");
}
} // namespace
} // namespace Data
} // namespace vumo
