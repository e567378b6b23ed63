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
