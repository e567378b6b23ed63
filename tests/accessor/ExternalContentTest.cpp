#include "tests/accessor/AccessorFixture.h"

namespace vumo::test
{
namespace
{
using ExternalContent = AccessorOvri::ExternalContent;

class ExternalContentTest : public AccessorFixture
{
protected:
    ExternalContentTest() : mTable(new Structure("externalContentTable"))
    {
        for (const char* member : {"node", "key", "upath", "rpath", "roles"})
            mTable->addMember(Member::kString, 1, member);
    }

    /// A scene file of that kind whose scene holds a table with one entry, and a node metadata of its own.
    void writeTable(const ScratchFile& file, const std::string& bare)
    {
        file.setBytes(bare);
        Stream stream(*mTable, ExternalContent::getStreamName());
        Handle entry(*mTable);
        EXPECT_TRUE(ExternalContent::setEntry(entry, "Body", "skin", "$TEX/skin.png", "/tex/skin.png", {"file"}));
        stream.setElement(0, entry);
        Associations table;
        table.channel(ExternalContent::getChannelName()).setDataStream(stream);
        EXPECT_EQ(attach(file.name(), "", table), "");
        EXPECT_EQ(attach(file.name(), "Body", associationsOf("s", "s", *valueStructure("Weight"), 0, "1")), "");
    }

    Ref<Structure> mTable;
};

TEST_F(ExternalContentTest, Roles_SurviveTheirPackedForm)
{
    const struct
    {
        std::set<std::string> roles;
        const char* packed;
    } cases[] = {
        {{}, ""},
        {{"x", "y"}, "x;y"},
        {{"a;b-c"}, "a-*b--c"},
        {{"-*", "-", ";", "--;"}, "--;--*;-----*;-*"},
    };
    for (const auto& [roles, packed] : cases)
    {
        SCOPED_TRACE(packed);
        Handle entry(*mTable);
        ASSERT_TRUE(ExternalContent::setEntry(entry, "n", "k", "u", "r", roles));
        entry.setPositionByMemberName("roles");
        EXPECT_EQ(entry.str(0), packed);
        std::string texts[4];
        std::set<std::string> found = {"was there"};
        EXPECT_TRUE(ExternalContent::getEntry(entry, texts[0], texts[1], texts[2], texts[3], found));
        EXPECT_EQ(texts[0] + texts[1] + texts[2] + texts[3], "nkur");
        EXPECT_EQ(found.erase("was there"), 1U);
        EXPECT_EQ(found, roles);
    }
}

TEST_F(ExternalContentTest, SetEntry_WritesAllOrNothing)
{
    Handle entry(*mTable);
    ASSERT_TRUE(ExternalContent::setEntry(entry, "n", "k", "u", "r", {"x"}));
    EXPECT_FALSE(ExternalContent::setEntry(entry, "N", "K", "U", "R", {"", "y"})) << "an empty role would be lost";
    EXPECT_FALSE(ExternalContent::setEntry(entry, "N", "K", "U", kZero, {"y"}));
    EXPECT_TRUE(ExternalContent::updateEntry(entry, "R"));
    std::string texts[4];
    std::set<std::string> roles;
    ExternalContent::getEntry(entry, texts[0], texts[1], texts[2], texts[3], roles);
    EXPECT_EQ(texts[0] + texts[1] + texts[2] + texts[3], "nkuR");
    EXPECT_EQ(roles, std::set<std::string>{"x"});

    const Ref<Structure> other = valueStructure("Other");
    Handle wrong(*other);
    EXPECT_FALSE(ExternalContent::updateEntry(wrong, "R"));
    EXPECT_FALSE(ExternalContent::getEntry(wrong, texts[0], texts[1], texts[2], texts[3], roles));
    Handle none(*mTable, nullptr);
    EXPECT_FALSE(ExternalContent::setEntry(none, "N", "K", "U", "R", {}));
    EXPECT_FALSE(ExternalContent::getEntry(none, texts[0], texts[1], texts[2], texts[3], roles));
}

TEST_F(ExternalContentTest, GetEntry_SkipsEmptyRoles)
{
    Handle entry(*mTable);
    std::string errors;
    entry.setPositionByMemberName("roles");
    ASSERT_EQ(entry.fromStr(";x;;y-;-z;", 0, errors), 0) << errors;
    std::string text;
    std::set<std::string> roles;
    EXPECT_TRUE(ExternalContent::getEntry(entry, text, text, text, text, roles));
    EXPECT_EQ(roles, (std::set<std::string>{"x", "y-", "-z"}));
}

TEST_F(ExternalContentTest, ReadTable_NeedsTheStructureOfTheTable)
{
    Associations withoutStreams;
    withoutStreams.channel("no streams");
    for (const Associations& others : {withoutStreams, associationsOf("s", "s", *valueStructure("Weight"), 0, "1")})
    {
        const ScratchFile file(".ob");
        file.setBytes(sceneWith(""));
        ASSERT_EQ(attach(file.name(), "", others), "");
        Associations table;
        std::string errors;
        EXPECT_FALSE(ExternalContent::readTable(file.name(), table, errors));
        EXPECT_EQ(errors, "");
        EXPECT_TRUE(table.empty());
    }
}

TEST_F(ExternalContentTest, ReadTable_ReadsTheTableOfBothKindsOfScene)
{
    const struct
    {
        const char* ending;
        std::string bare;
    } cases[] = {
        {".oa", "//Ovri ASCII 2014 scene\nselect -ne :a;\n// End of it\n"},
        {".ob", sceneWith("")},
    };
    for (const auto& [ending, bare] : cases)
    {
        SCOPED_TRACE(ending);
        const ScratchFile file(ending);
        std::string errors;
        Associations table;
        file.setBytes(bare);
        EXPECT_FALSE(ExternalContent::readTable(file.name(), table, errors)) << "the scene has no table";
        EXPECT_EQ(ExternalContent::getStream(table), nullptr);
        EXPECT_TRUE(table.empty());

        writeTable(file, bare);
        ASSERT_TRUE(ExternalContent::readTable(file.name(), table, errors)) << errors;
        ASSERT_NE(ExternalContent::getStream(table), nullptr);
        Handle entry = ExternalContent::getStream(table)->element(0);
        entry.setPositionByMemberName("rpath");
        EXPECT_EQ(entry.str(0), "/tex/skin.png");

        const auto accessor = readScene(file.name());
        EXPECT_NE(ExternalContent::getStream(*accessor), nullptr);
        const Ref<Structure> weight = valueStructure("Weight");
        Stream notes(*weight, "notes");
        notes.setElement(0, Handle(*weight));
        accessor->associations()[""].channel("scene").setDataStream(notes);
        Accessor::StructureSet structures = accessor->structures();
        structures.insert(weight.get());
        accessor->setStructures(structures);
        ASSERT_TRUE(accessor->write(errors)) << errors;
        table = Associations();
        EXPECT_TRUE(ExternalContent::readTable(file.name(), table, errors)) << errors;
        EXPECT_NE(ExternalContent::getStream(table), nullptr) << "beside a channel of another structure";
        EXPECT_EQ(errors, "");

        accessor->associations().clear();
        EXPECT_EQ(ExternalContent::getStream(*accessor), nullptr);
        EXPECT_TRUE(accessor->associations().empty());
    }
    std::string errors;
    Associations table;
    EXPECT_FALSE(ExternalContent::readTable("scene.txt", table, errors));
    EXPECT_EQ(errors, "No accessor found for type of file \"scene.txt\"");
}
} // namespace
} // namespace vumo::test
