#include "tests/support/DataFixtures.h"

#include <initializer_list>

namespace vumo::Data
{
namespace
{
std::string nameOf(const Stream* stream)
{
    return stream->name();
}

std::string nameOf(const Channel& channel)
{
    return channel.name();
}

/// The streams of a channel.
struct Streams
{
    static Stream entry(const std::string& name) { return Stream(*Structure::create(), name); }
    Stream* find(const std::string& name) { return mSet.findDataStream(name); }
    Stream* at(unsigned int n) { return mSet.dataStream(n); }
    void set(const Stream& stream) { mSet.setDataStream(stream); }
    bool remove(const std::string& name) { return mSet.removeDataStream(name); }
    bool rename(const std::string& from, const std::string& to) { return mSet.renameDataStream(from, to); }

    Channel mSet;
    std::string mClass = "Channel";
    std::string mEntryClass = "Stream";
};

/// The channels of an associations object.
struct Channels
{
    static Channel entry(const std::string& name) { return Channel(name); }
    Channel* find(const std::string& name) { return mSet.findChannel(name); }
    Channel* at(unsigned int n) { return mSet[n]; }
    void set(const Channel& channel) { mSet.setChannel(channel); }
    bool remove(const std::string& name) { return mSet.removeChannel(name); }
    bool rename(const std::string& from, const std::string& to) { return mSet.renameChannel(from, to); }

    Associations mSet;
    std::string mClass = "Associations";
    std::string mEntryClass = "Channel";
};

/// What the two sets have alike: entries known by name, which others may share and rename.
template <class Set>
class NamedSetTest : public test::DataTest
{
protected:
    static Set setWith(std::initializer_list<const char*> names)
    {
        Set set;
        for (const char* name : names)
            set.set(Set::entry(name));
        return set;
    }

    static std::string namesOf(const Set& set)
    {
        std::string names;
        for (auto&& entry : set.mSet)
            names += nameOf(entry) + " ";
        return names;
    }

    static void expectFound(Set& set, std::initializer_list<const char*> names)
    {
        for (const char* name : names)
            EXPECT_NE(set.find(name), nullptr) << name;
    }
};

using Sets = ::testing::Types<Streams, Channels>;
TYPED_TEST_SUITE(NamedSetTest, Sets, );

TYPED_TEST(NamedSetTest, Entries_AreFoundByNameAndInByteOrder)
{
    TypeParam set = this->setWith({"b", "a", "B", "ab"});
    EXPECT_EQ(this->namesOf(set), "B a ab b ");
    EXPECT_EQ(set.at(2)->name(), "ab");
    EXPECT_EQ(set.at(4), nullptr);
    EXPECT_EQ(set.find("ab"), set.at(2));
    EXPECT_EQ(set.find("absent"), nullptr);
    EXPECT_EQ(set.mSet.size(), 4U);
}

TYPED_TEST(NamedSetTest, NamesAndEntriesOfTheSetItself_MayBeHandedToIt)
{
    TypeParam set = this->setWith({"a", "b", "c"});
    set.set(*set.find("a"));
    set.set(TypeParam::entry("a"));
    EXPECT_TRUE(set.remove(set.at(0)->name()));
    EXPECT_FALSE(set.remove("a"));
    EXPECT_TRUE(set.rename(set.at(0)->name(), "z"));
    EXPECT_EQ(set.rename("z", set.find("z")->name()), set.mClass == "Channel");
    EXPECT_FALSE(set.rename("b", "x"));
    EXPECT_FALSE(set.rename("z", set.find("c")->name())); // which a channel loses by it
    EXPECT_EQ(this->namesOf(set), std::string("c ") + (set.mSet.size() > 1 ? "z " : ""));
}

TYPED_TEST(NamedSetTest, RenamesBehindASetsBack_HideNoEntry)
{
    TypeParam renamer = this->setWith({"b", "d", "f"});
    TypeParam other = this->setWith({"c"});
    for (unsigned int n = 0; n < 3; ++n)
        other.set(*renamer.at(n));
    EXPECT_TRUE(renamer.rename("b", "x"));
    EXPECT_TRUE(renamer.rename("f", "a"));
    this->expectFound(other, {"x", "d", "c", "a"});
    EXPECT_EQ(other.find("b"), nullptr);
    EXPECT_EQ(other.find("f"), nullptr);
    other.set(TypeParam::entry("b"));
    other.set(TypeParam::entry("x"));
    EXPECT_EQ(other.mSet.size(), 5U);
    EXPECT_TRUE(renamer.rename("d", "c")); // the other set has two of them now
    EXPECT_EQ(other.mSet.size(), 5U);
    other.set(TypeParam::entry("c")); // takes the place of both
    for (const char* name : {"x", "a", "b", "c"})
        EXPECT_TRUE(other.remove(name)) << name;
    EXPECT_TRUE(other.mSet.empty());
}

TYPED_TEST(NamedSetTest, EntriesAssignedInPlace_AreFoundByTheirNewNames)
{
    TypeParam set = this->setWith({"a", "b", "c", "d", "e"});
    *set.find("a") = TypeParam::entry("z");
    this->expectFound(set, {"z", "b", "c", "d", "e"});
    EXPECT_EQ(set.find("a"), nullptr);
}

TYPED_TEST(NamedSetTest, Iterators_StepOnlyByThePrefixForm)
{
    const TypeParam set = this->setWith({"a", "b"});
    const std::string line = set.mClass + "Iterator ";
    auto position = set.mSet.begin();
    EXPECT_EQ(nameOf(*position++), "a");
    EXPECT_EQ(test::printed(&position), line + "positioned at " + set.mEntryClass + " a.\n");
    auto copy(position);
    ++copy;
    EXPECT_EQ(nameOf(*copy), "b");
    EXPECT_EQ(nameOf(*position), "a");
    EXPECT_TRUE(copy != position);
    position = copy;
    const auto& itself = position;
    position = itself;
    EXPECT_TRUE(copy == position);
    EXPECT_EQ(position->name(), "b");
    ++position;
    EXPECT_TRUE(++position == set.mSet.end());
    EXPECT_TRUE(position == decltype(position)(set.mSet, static_cast<IterLocation>(7)));
    EXPECT_FALSE(position.valid());
    EXPECT_TRUE(position != TypeParam().mSet.end());
    EXPECT_EQ(test::printed(&position), line + "postioned at the end.\n");

    const auto end = position;
    const std::string thrown = set.mClass + "Impl::Iterator::operator";
    EXPECT_EQ(test::thrownBy([&] { *position; }), "out_of_range: " + thrown + "*");
    EXPECT_EQ(test::thrownBy([&] { position.operator->(); }), "out_of_range: " + thrown + "->");
    EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: const " + thrown + "->");
}
} // namespace
} // namespace vumo::Data
