#include "vumo/data/Channel.h"

#include "tests/support/DataFixtures.h"

namespace vumo::Data
{
namespace
{
class ChannelTest : public test::RecordTest
{
protected:
    /// A stream with one record at index 0 that carries the stream's first name as its label.
    Stream stream(const std::string& name) const
    {
        Stream made(*mRecord, name);
        made.setElement(0, test::record(*mRecord, 0, name));
        return made;
    }
};

using ChannelGoldenTest = ChannelTest;

TEST_F(ChannelTest, SetDataStream_SharesTheElements)
{
    Channel channel("vertex");
    EXPECT_EQ(channel.name(), "vertex");
    EXPECT_EQ(Channel().name(), "Unnamed");
    Stream given = stream("a");
    Stream* const stored = channel.setDataStream(given);
    EXPECT_NE(stored, &given);
    given.setElement(3, Handle(*mRecord));
    EXPECT_TRUE(stored->hasElement(3));
    EXPECT_EQ(channel.setDataStream(*stored), stored);
    EXPECT_EQ(channel.dataStream("a"), stored);
    const Channel& constChannel = channel;
    EXPECT_EQ(constChannel.findDataStream("a"), constChannel.dataStream(0));
    EXPECT_EQ(constChannel.dataStream("a"), stored);
    EXPECT_EQ(channel.dataStreamCount(), 1U);
}

TEST_F(ChannelTest, Elements_AreAddedAndRemovedWhereTheIndexTypeFits)
{
    Channel channel;
    Stream* const numbers = channel.setDataStream(stream("numbers"));
    Stream pairs(*mRecord, "pairs");
    pairs.setIndexType("pair");
    channel.setDataStream(pairs);
    EXPECT_TRUE(channel.addElement(IndexPair(1, 2)));
    EXPECT_TRUE(pairs.element(IndexPair(1, 2)).isDefault());
    EXPECT_FALSE(numbers->hasElement(IndexPair(1, 2)));
    EXPECT_FALSE(channel.addElement(IndexString("x")));
    numbers->setElement(IndexPair(7, 7), Handle(*mRecord)); // an index of another type than the stream's
    EXPECT_FALSE(channel.removeElement(IndexPair(7, 7)));
    EXPECT_TRUE(channel.removeElement(IndexPair(1, 2)));
    EXPECT_EQ(pairs.elementCount(), 0U);

    const auto large = Structure::make("Large", {{Member::kUInt8, 5000, "bytes"}});
    channel.setDataStream(Stream(*large, "z"))->useDenseStorage(true); // where nothing fits at 0
    EXPECT_TRUE(channel.addElement(0));
}

TEST_F(ChannelTest, ANullStream_IsNeverOrdered)
{
    const ChannelImpl::StreamCompare compare;
    const Stream some = stream("a");
    const std::string thrown = "invalid_argument: Null Stream found in Channel.";
    EXPECT_EQ(test::thrownBy([&] { compare(nullptr, &some); }), thrown);
    EXPECT_EQ(test::thrownBy([&] { compare(&some, nullptr); }), thrown);
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
    const Stream* const stream = channel.dataStream("a");
    EXPECT_EQ(test::footprintOf(&channel).totalSize(),
              sizeof(Channel) + sizeof(ChannelImpl) + test::footprintOf(stream).totalSize());
}
} // namespace
} // namespace vumo::Data
