#include "vumo/data/Associations.h"

#include "tests/support/DataFixtures.h"

#include <initializer_list>
#include <memory>

namespace vumo
{
namespace Data
{
namespace
{
class AssociationsTest : public test::DataTest
{
protected:
    static Associations associationsWith(std::initializer_list<const char*> names)
    {
        Associations associations;
        for (const char* name : names)
            associations.channel(name);
        return associations;
    }

    static std::string namesOf(const Associations& associations)
    {
        std::string names;
        for (const Channel& channel : associations)
            names += channel.name() + " ";
        return names;
    }

    /// Associations with a channel "vertex" that holds a stream "s" with a record at 0.
    Associations associationsWithElement() const
    {
        Associations associations;
        Stream stream(*mRecord, "s");
        stream.setElement(0, test::record(*mRecord, 1, "one"));
        associations.channel("vertex").setDataStream(stream);
        return associations;
    }

    static std::string elementOf(Associations associations)
    {
        return test::recordText(*associations.channel("vertex").dataStream("s"), 0);
    }

    Ref<Structure> mRecord = test::recordStructure();
};

using AssociationsGoldenTest = AssociationsTest;

TEST_F(AssociationsTest, Channels_AreMadeByOneAccessorOnly)
{
    Associations associations;
    EXPECT_TRUE(associations.empty());
    EXPECT_EQ(associations.findChannel("x"), nullptr);
    EXPECT_EQ(associations.channelAt(5).name(), "Unnamed");
    EXPECT_EQ(associations[0], nullptr);
    EXPECT_EQ(associations.size(), 0U);
    const Channel made = associations.channel("x");
    EXPECT_TRUE(made == *associations.findChannel("x"));
    EXPECT_TRUE(made == associations.channel("x"));
    EXPECT_TRUE(made == associations.channelAt(0));
    EXPECT_TRUE(made == *associations[0]);
    EXPECT_EQ(associations.channelCount(), 1U);
}

TEST_F(AssociationsTest, Channels_AreInByteOrder)
{
    Associations associations = associationsWith({"b", "a", "B", "ab"});
    EXPECT_EQ(namesOf(associations), "B a ab b ");
    EXPECT_EQ(associations[2]->name(), "ab");
    EXPECT_EQ(associations[4], nullptr);
}

TEST_F(AssociationsTest, SetChannel_ReplacesTheNameAlsoByTheStoredOne)
{
    Associations associations = associationsWith({"a", "b"});
    const Channel replacement("a");
    associations.setChannel(replacement);
    EXPECT_EQ(associations.size(), 2U);
    EXPECT_TRUE(*associations.findChannel("a") == replacement);
    associations.setChannel(*associations.findChannel("a"));
    EXPECT_TRUE(*associations.findChannel("a") == replacement);
    EXPECT_TRUE(associations.removeChannel(associations[0]->name()));
    EXPECT_FALSE(associations.removeChannel("a"));
    EXPECT_EQ(namesOf(associations), "b ");
}

TEST_F(AssociationsTest, Rename_ChangesNothingWhenRefused)
{
    Associations associations = associationsWith({"a", "b"});
    EXPECT_FALSE(associations.renameChannel("absent", "x"));
    EXPECT_FALSE(associations.renameChannel("a", "b"));
    EXPECT_EQ(namesOf(associations), "a b ");
    const Channel sharer = associations.channel("a");
    EXPECT_TRUE(associations.renameChannel(associations[0]->name(), "z"));
    EXPECT_EQ(sharer.name(), "z");
    EXPECT_EQ(namesOf(associations), "b z ");
    EXPECT_TRUE(*associations.findChannel("z") == sharer);
}

TEST_F(AssociationsTest, RenamesBehindASetsBack_HideNoEntry)
{
    Associations renamer = associationsWith({"b", "d", "f"});
    Associations other;
    for (const Channel& channel : renamer)
        other.setChannel(channel);
    EXPECT_TRUE(renamer.renameChannel("b", "x"));
    EXPECT_TRUE(renamer.renameChannel("f", "a"));
    for (const char* name : {"x", "d", "a"})
        EXPECT_NE(other.findChannel(name), nullptr) << name;
    EXPECT_EQ(other.findChannel("b"), nullptr);
    other.channel("c");
    other.setChannel(Channel("x"));
    EXPECT_EQ(other.size(), 4U);
    EXPECT_TRUE(renamer.renameChannel("d", "c"));
    EXPECT_EQ(other.size(), 4U);
    other.setChannel(Channel("c")); // takes the place of both
    EXPECT_EQ(other.size(), 3U);
    for (const char* name : {"x", "a", "c"})
        EXPECT_TRUE(other.removeChannel(name)) << name;
    EXPECT_TRUE(other.empty());
}

TEST_F(AssociationsTest, ChannelsAssignedInPlace_AreFoundByTheirNewNames)
{
    Associations associations = associationsWith({"a", "b", "c", "d", "e"});
    *associations.findChannel("a") = Channel("z");
    for (const char* name : {"z", "b", "c", "d", "e"})
        EXPECT_NE(associations.findChannel(name), nullptr) << name;
    EXPECT_EQ(associations.findChannel("a"), nullptr);
}

TEST_F(AssociationsTest, Copies_ShareUntilMadeUniqueDownToTheElements)
{
    Associations first = associationsWithElement();
    EXPECT_FALSE(first.makeUnique());
    Associations second(first);
    second.channel("face");
    EXPECT_NE(first.findChannel("face"), nullptr);
    EXPECT_TRUE(second.makeUnique());
    EXPECT_FALSE(first.makeUnique());
    Handle element = second.channel("vertex").dataStream("s")->element(0);
    test::setText(element, "label", "changed");
    EXPECT_EQ(elementOf(first), "1 one");
    EXPECT_EQ(elementOf(second), "1 changed");
    second.removeChannel("face");
    EXPECT_EQ(first.size(), 2U);

    Associations third;
    third = first;
    const Associations& itself = third;
    third = itself;
    EXPECT_TRUE(third.channel("vertex") == first.channel("vertex"));
    Associations empty;
    Associations emptyCopy(empty);
    EXPECT_FALSE(emptyCopy.makeUnique());
    emptyCopy.channel("x");
    EXPECT_TRUE(empty.empty());
}

TEST_F(AssociationsTest, PointersToOthers_ShareAndNullIsEmpty)
{
    const std::unique_ptr<Associations> created(Associations::create());
    EXPECT_TRUE(created->empty());
    created->channel("x");
    const Associations sharing(created.get());
    EXPECT_EQ(sharing.size(), 1U);
    EXPECT_TRUE(Associations(nullptr).empty());
}

TEST_F(AssociationsTest, AssigningFromWhatItOwns_IsSafe)
{
    Associations associations = associationsWithElement();
    Channel channel = associations.channel("vertex");
    associations = Associations();
    Stream stream;
    stream = *channel.dataStream("s");
    channel = Channel();
    EXPECT_EQ(test::recordText(stream, 0), "1 one");
}

TEST_F(AssociationsTest, Iterators_StepOnlyByThePrefixForm)
{
    const Associations associations = associationsWith({"a", "b"});
    AssociationsIterator position = associations.begin();
    EXPECT_EQ((*position++).name(), "a");
    EXPECT_EQ(position->name(), "a");
    EXPECT_EQ(test::printed(&position), "AssociationsIterator positioned at Channel a.\n");
    const AssociationsIterator before(position);
    ++position;
    EXPECT_EQ(before->name(), "a");
    EXPECT_EQ(position->name(), "b");
    ++position;
    EXPECT_TRUE(++position == associations.end());
    EXPECT_TRUE(position != before);
    EXPECT_EQ(test::printed(&position), "AssociationsIterator postioned at the end.\n");
    const AssociationsIterator end = position;
    EXPECT_EQ(test::thrownBy([&] { *position; }), "out_of_range: AssociationsImpl::Iterator::operator*");
    EXPECT_EQ(test::thrownBy([&] { position.operator->(); }), "out_of_range: AssociationsImpl::Iterator::operator->");
    EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: const AssociationsImpl::Iterator::operator->");
}

TEST_F(AssociationsGoldenTest, Debug_PrintsEachChannel)
{
    Associations associations;
    EXPECT_EQ(test::printed(&associations), "Data Associations\n{\n    No channels\n}\n");
    const unsigned long long empty = test::footprintOf(&associations).totalSize();
    EXPECT_EQ(empty, sizeof(Associations) + sizeof(AssociationsImpl));
    associations.channel("b").setDataStream(Stream(*mRecord, "s"));
    associations.channel("a");
    EXPECT_EQ(test::printedWithoutAddresses(&associations),
              "Data Associations\n"
              "{\n"
              "    Empty Channel\n"
              "    Channel b\n"
              "    {\n"
              "        Stream Data Stream 's' uses structure 'Record' with index type 'numeric'\n"
              "        Data Stream (Mapped)\n"
              "        {\n"
              "            PTR: ADDRESS\n"
              "            Lowest valid index = 0\n"
              "            Highest valid index = 0\n"
              "            Stream Elements\n"
              "            {\n"
              "                Element count = 0\n"
              "            }\n"
              "        }\n"
              "    }\n"
              "}\n");
    const Channel channel = associations.channelAt(0);
    EXPECT_GE(test::footprintOf(&associations).totalSize(), empty + 2 * test::footprintOf(&channel).totalSize());
}
} // namespace
} // namespace Data
} // namespace vumo
