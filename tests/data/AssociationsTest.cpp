#include "vumo/data/Associations.h"

#include "tests/support/DataFixtures.h"

#include <memory>

namespace vumo::Data
{
namespace
{
using AssociationsTest = test::RecordTest;
using AssociationsGoldenTest = AssociationsTest;

TEST_F(AssociationsTest, Channels_AreMadeByOneAccessorOnly)
{
    Associations associations;
    EXPECT_EQ(associations.findChannel("x"), nullptr);
    EXPECT_EQ(associations.channelAt(5).name(), "Unnamed");
    EXPECT_EQ(associations[0], nullptr);
    EXPECT_EQ(associations.size(), 0U);
    const Channel made = associations.channel("x");
    EXPECT_TRUE(made == *associations.findChannel("x"));
    EXPECT_TRUE(made == associations.channel("x"));
    EXPECT_TRUE(made == associations.channelAt(0));
    EXPECT_EQ(associations.channelCount(), 1U);
    const Channel replacement("x");
    associations.setChannel(replacement);
    EXPECT_TRUE(*associations[0] == replacement);
}

TEST_F(AssociationsTest, PointersToOthers_ShareAndNullIsEmpty)
{
    const std::unique_ptr<Associations> created(Associations::create());
    created->channel("x");
    Associations sharing(created.get());
    EXPECT_EQ(sharing.size(), 1U);
    const Associations& itself = sharing;
    sharing = itself;
    EXPECT_TRUE(sharing[0] == (*created)[0]);
    EXPECT_TRUE(Associations(nullptr).empty());
}

TEST_F(AssociationsTest, AssigningFromWhatItOwns_IsSafe)
{
    Stream original(*mRecord, "s");
    original.setElement(0, test::record(*mRecord, 1, "one"));
    Associations associations;
    associations.channel("vertex").setDataStream(original);
    original = Stream();
    Channel channel = associations.channel("vertex");
    associations = Associations();
    Stream stream;
    stream = *channel.dataStream("s");
    channel = Channel();
    EXPECT_EQ(test::recordText(stream, 0), "1 one");
}

TEST_F(AssociationsTest, Edit_CopiesWhatIsSharedOnItsPathAndNothingElse)
{
    Associations associations;
    for (const char* const name : {"s", "t"})
    {
        Stream stream(*mRecord, name);
        stream.setElement(0, test::record(*mRecord, 1, "old"));
        associations.channel("vertex").setDataStream(stream);
    }
    associations.channel("face");
    const Associations copy(associations);
    const Channel channel = associations.channel("vertex");
    const Stream stream = *channel.findDataStream("s");

    associations.edit("vertex", "s").setElement(0, test::record(*mRecord, 2, "new"));
    const Channel& edited = *associations.findChannel("vertex");
    EXPECT_EQ(test::recordText(*edited.findDataStream("s"), 0), "2 new");
    for (const Stream* const sharer :
         {copy.findChannel("vertex")->findDataStream("s"), channel.findDataStream("s"), &stream})
        EXPECT_EQ(test::recordText(*sharer, 0), "1 old");
    EXPECT_TRUE(*associations.findChannel("face") == *copy.findChannel("face"));
    EXPECT_EQ(edited.findDataStream("t")->element(0).data(), channel.findDataStream("t")->element(0).data());

    const Stream* const first = &associations.edit("vertex", "s");
    EXPECT_EQ(&associations.edit("vertex", "s"), first) << "nothing is shared any more";
    EXPECT_TRUE(associations.edit("node", "u").setStructure(*mRecord));
    EXPECT_EQ(associations.findChannel("node")->findDataStream("u")->elementCount(), 0U);
    EXPECT_FALSE(copy.findChannel("node"));
}

TEST_F(AssociationsGoldenTest, Debug_PrintsEachChannel)
{
    Associations associations;
    EXPECT_EQ(test::printed(&associations), "Data Associations\n{\n    No channels\n}\n");
    associations.channel("a");
    associations.channel("b");
    EXPECT_EQ(test::printed(&associations), "Data Associations\n{\n    Empty Channel\n    Empty Channel\n}\n");
    EXPECT_EQ(test::footprintOf(&associations).totalSize(),
              sizeof(Associations) + sizeof(AssociationsImpl) + 2 * test::footprintOf(associations[0]).totalSize());
}
} // namespace
} // namespace vumo::Data
