#include "vumo/data/Structure.h"

#include "tests/support/DataFixtures.h"
#include "vumo/data/ScalarAccess.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace vumo::Data
{
namespace
{
using StructureTest = test::DataTest;
using StructureGoldenTest = StructureTest;

struct LayoutCase
{
    std::vector<std::pair<unsigned int, unsigned int>> members; // type number, dimension
    std::vector<unsigned long long> offsets;
    unsigned long long size;
};

TEST_F(StructureTest, Layout_AlignsMembersAndRoundsByTheFirst)
{
    constexpr unsigned int kMost = 4294967295U;
    const LayoutCase cases[] = {
        {{}, {}, 0},
        {{{Member::kUInt8, 1}, {Member::kDouble, 1}, {Member::kUInt8, 1}}, {0, 8, 16}, 17},
        {{{Member::kInt16, 1}, {Member::kInt32, 1}, {Member::kInt8, 1}}, {0, 4, 8}, 10},
        {{{Member::kDouble, 1}, {Member::kUInt8, 1}}, {0, 8}, 16},
        {{{Member::kUInt8, 1}, {Member::kInt32, 1}}, {0, 4}, 8},
        {{{Member::kFloat, 3}, {Member::kString, 2}, {Member::kDoubleMatrix4x4, 1}}, {0, 16, 32}, 160},
        {{{99, 5}, {Member::kInt32, 1}}, {0, 0}, 4}, // unknown types take no room and ask for none
        {{{Member::kInt8, 1}, {15, 7}, {Member::kDouble, 1}}, {0, 1, 8}, 16},
        {{{4294967295U, 1}}, {0}, 0},
        {{{Member::kDoubleMatrix4x4, kMost}, {Member::kInt8, 1}}, {0, 549755813760}, 549755813768},
        {{{Member::kInt8, kMost}, {Member::kInt8, 1}, {Member::kInt8, 1}}, {0, kMost, 4294967296}, 4294967297},
        {{{Member::kInt8, kMost}, {Member::kDouble, 1}}, {0, 4294967296}, 4294967304},
    };
    for (const LayoutCase& expected : cases)
    {
        const Ref<Structure> structure(Structure::create());
        for (const auto& [type, dimension] : expected.members)
        {
            const std::string name = std::to_string(structure->memberCount());
            EXPECT_TRUE(structure->addMember(static_cast<Member::eDataType>(type), dimension, name.c_str()));
        }
        SCOPED_TRACE(test::printed(structure.get()));
        std::vector<unsigned long long> offsets;
        for (unsigned int i = 0; i < structure->size(); ++i)
            offsets.push_back(Member::offset(structure->member(i)));
        EXPECT_EQ(offsets, expected.offsets);
        EXPECT_EQ(structure->totalSize(), expected.size);
        const Structure copy(*structure);
        EXPECT_TRUE(copy == *structure);
        EXPECT_EQ(copy.totalSize(), expected.size);
    }
}

TEST_F(StructureTest, AddMembers_AppendsWhatAddMemberWouldAcceptAndChangesNothingElse)
{
    const Ref<Structure> structure = Structure::make("S", {{Member::kUInt8, 1, "a"}});
    EXPECT_EQ(structure->addMembers({{Member::kDouble, 1, "b"},
                                     {Member::kInt8, 1, "a"},
                                     {Member::kInt8, 0, "c"},
                                     {Member::kInvalidType, 1, "c"},
                                     {Member::kInt8, 1, nullptr},
                                     {Member::kInt8, 1, ""},
                                     {Member::kInt8, 1, "b"},
                                     {Member::kUInt8, 1, "c"}}),
              2U);
    EXPECT_EQ(*structure,
              *Structure::make("S", {{Member::kUInt8, 1, "a"}, {Member::kDouble, 1, "b"}, {Member::kUInt8, 1, "c"}}));
    const unsigned long long stamp = structure->checkpoint();
    EXPECT_EQ(structure->addMembers({{Member::kInt8, 1, "c"}}), 0U);
    EXPECT_FALSE(structure->addMember(Member::kInt8, 1, "c"));
    EXPECT_EQ(structure->checkpoint(), stamp);
    EXPECT_TRUE(structure->addMember(Member::kInt8, 1, "C")); // names are case-sensitive
    EXPECT_TRUE(structure->changedSinceCheckpoint(stamp));
}

TEST_F(StructureTest, Make_RefusesWhatAddMemberDoes)
{
    const Ref<Structure> made = Structure::make("S", {{Member::kUInt8, 1, "a"}, {Member::kDouble, 2, "b"}});
    EXPECT_STREQ(made->name(), "S");
    EXPECT_EQ(made->totalSize(), 24U);
    EXPECT_EQ(made->refCount(), 1);
    EXPECT_FALSE(Structure::make("S", {{Member::kUInt8, 1, "a"}, {Member::kDouble, 2, "a"}}));
}

TEST_F(StructureTest, NamesThatPointIntoOldOnes_AreCopiedFirst)
{
    const auto structure = Structure::make("structure of stone", {{Member::kFloat, 1, "a long member name"}});
    structure->setName(structure->name() + 13);
    EXPECT_STREQ(structure->name(), "stone");
    structure->setName(structure->name());
    EXPECT_STREQ(structure->name(), "stone");
    EXPECT_TRUE(structure->addMember(Member::kFloat, 1, Member::name(structure->member(0)) + 7));
    EXPECT_STREQ(Member::name(structure->member(1)), "member name");
    structure->setName(nullptr);
    EXPECT_STREQ(structure->name(), "structure");
    EXPECT_STREQ(Structure(nullptr).name(), "structure");
}

TEST_F(StructureTest, DefaultData_HasRoomForMembersAddedLater)
{
    const auto structure = Structure::make("S", {{Member::kUInt8, 1, "a"}});
    EXPECT_NE(structure->defaultData(), nullptr);
    ASSERT_TRUE(structure->addMember(Member::kString, 100, "texts"));
    const Handle handle(*structure); // reads all of the default block
    EXPECT_TRUE(handle.isDefault());
    EXPECT_EQ(test::printed(structure.get()).find("No default values"), std::string::npos);
}

TEST_F(StructureTest, EmptyStructures_HaveNoBlocks)
{
    const Ref<Structure> structure(Structure::create());
    EXPECT_EQ(structure->defaultData(), nullptr);
    EXPECT_EQ(structure->allocateDefaultChunk(), nullptr);
    EXPECT_EQ(structure->duplicateChunk(nullptr), nullptr);
    structure->fillWithDefaultChunk(nullptr);
    structure->fillWithDuplicateChunk(nullptr, nullptr);
    structure->destroyChunk(nullptr);
    EXPECT_FALSE(Handle(*structure).hasData());
}

TEST_F(StructureTest, Chunks_AreDefaultWhereAllMembersAre)
{
    const auto structure = test::recordStructure();
    Handle element(*structure);
    test::setText(element, "label", "set");
    EXPECT_FALSE(structure->chunkIsDefault(element.data()));
    EXPECT_TRUE(structure->chunkMemberIsDefault(element.data(), "flag"));
    EXPECT_FALSE(structure->chunkMemberIsDefault(element.data(), "label"));
    EXPECT_FALSE(structure->chunkMemberIsDefault(element.data(), "no such member"));
    std::string block(17, '\x7F');
    structure->fillWithDefaultChunk(block.data());
    EXPECT_EQ(block, std::string(17, '\0')); // the bytes between the members, too
}

TEST_F(StructureTest, Assignment_ReplacesEverythingAndSharesNothing)
{
    const auto source = test::recordStructure();
    source->defaultData();
    const auto target = Structure::make("Other", {{Member::kString, 9, "texts"}});
    target->defaultData();
    const unsigned long long stamp = target->objectChanged();
    *target = *source;
    EXPECT_EQ(target->checkpoint(), stamp + 1);
    EXPECT_TRUE(*target == *source);
    EXPECT_EQ(target->refCount(), 1);
    EXPECT_NE(target->defaultData(), source->defaultData());

    const unsigned long long later = target->checkpoint();
    const Structure& itself = *target;
    *target = itself;
    EXPECT_FALSE(target->changedSinceCheckpoint(later));
    EXPECT_TRUE(Handle(*target).isDefault());
}

TEST_F(StructureTest, Strings_AreCopiedAndReleasedWhereverTheyStand)
{
    const Ref<Structure> layouts[] = {
        Structure::make(
            "S",
            {{Member::kString, 1, "a"}, {Member::kInt8, 3, "b"}, {Member::kString, 2, "c"}, {Member::kInt8, 8, "d"}}),
        Structure::make("S", {{Member::kInt8, 1, "a"}, {Member::kString, 2, "b"}}),
        Structure::make("S", {{Member::kString, 1, "a"}, {Member::kString, 1, "b"}, {Member::kInt64, 1, "c"}}),
        Structure::make("S", {{Member::kInt64, 2, "a"}}),
    };
    const Ref<Structure> structure(Structure::create());
    for (const Ref<Structure>& layout : layouts)
    {
        SCOPED_TRACE(test::printed(layout.get()));
        *structure = *layout; // what was known of the strings before holds no more
        Handle original(*structure);
        const auto forEachString = [&](Handle& handle, auto&& visit) {
            for (unsigned int i = 0; i < structure->memberCount(); ++i)
            {
                handle.setPositionByMemberIndex(i);
                for (unsigned int k = 0; handle.asString() && k < handle.dataLength(); ++k)
                    visit(handle, k);
            }
        };
        std::memset(original.data(), 0x5A, structure->totalSize());
        forEachString(original,
                      [](Handle& handle, unsigned int k) { storeScalar<char*>(handle.asString() + k, nullptr); });
        const std::string bytes(original.data(), structure->totalSize());
        std::string errors;
        forEachString(original, [&](Handle& handle, unsigned int k) { handle.fromStr("text", k, errors); });
        Handle copy(original);
        copy.makeUnique();
        structure->destroyChunk(original.data());
        EXPECT_EQ(std::string(original.data(), structure->totalSize()), bytes);
        forEachString(copy, [](Handle& handle, unsigned int k) { EXPECT_EQ(handle.str(k), "text"); });
        structure->destroyChunk(copy.data());
        EXPECT_EQ(std::string(copy.data(), structure->totalSize()), bytes);
    }
}

TEST_F(StructureTest, Equality_AsksForNameSizeAndEveryMember)
{
    const auto base = Structure::make("S", {{Member::kInt8, 2, "a"}, {Member::kInt8, 1, "b"}});
    const Ref<Structure> others[] = {
        Structure::make("T", {{Member::kInt8, 2, "a"}, {Member::kInt8, 1, "b"}}),
        Structure::make("S", {{Member::kInt8, 2, "a"}, {Member::kInt8, 1, "c"}}),
        Structure::make("S", {{Member::kInt8, 1, "a"}, {Member::kInt8, 2, "b"}}),
        Structure::make("S", {{Member::kInt8, 2, "a"}, {Member::kUInt8, 1, "b"}}),
        Structure::make("S", {{Member::kInt8, 3, "a"}}),
        Structure::make("S", {}),
    };
    for (const Ref<Structure>& other : others)
        EXPECT_TRUE(*base != *other) << test::printed(other.get());
    EXPECT_TRUE(*Structure::make("S", {}) == *others[5]);
}

TEST_F(StructureTest, AStructureThatNobodyHolds_SurvivesWhoIsMerelyHandedIt)
{
    const auto registered = test::recordStructure();
    ASSERT_TRUE(Structure::registerStructure(*registered));
    Stream filled(*registered, "t");
    filled.setElement(0, Handle(*registered));
    auto* const loose = new Structure(*registered);
    EXPECT_TRUE(*loose == *registered);
    EXPECT_FALSE(Structure::registerStructure(*loose));
    EXPECT_FALSE(Structure::deregisterStructure(*loose));
    EXPECT_FALSE(filled.setStructure(*loose));
    EXPECT_FALSE(Handle(*registered).usesStructure(*loose));
    EXPECT_TRUE(loose->addMember(Member::kString, 2, "more"));
    loose->setName("Loose");
    test::printed(loose);
    test::footprintOf(loose);
    delete[] loose->allocateDefaultChunk();
    EXPECT_TRUE(loose->chunkIsDefault(loose->defaultData()));
    Structure copy("copy");
    copy = *loose;
    EXPECT_EQ(loose->refCount(), 0);
    EXPECT_STREQ(loose->name(), "Loose");
    {
        const Handle handle(*loose); // takes and releases the only reference
    }
    EXPECT_EQ(Structure::structureByName("Loose"), nullptr);
}

TEST_F(StructureTest, Registry_RefusesEqualsAndFindsByName)
{
    const auto structure = test::recordStructure();
    EXPECT_TRUE(Structure::registerStructure(*structure));
    EXPECT_FALSE(Structure::registerStructure(*structure));
    EXPECT_EQ(structure->refCount(), 2);
    const Ref<Structure> copy(new Structure(*structure));
    EXPECT_FALSE(Structure::registerStructure(*copy));
    EXPECT_EQ(copy->refCount(), 1);
    EXPECT_EQ(Structure::structureByName("Record"), structure.get());
    ASSERT_TRUE(copy->addMember(Member::kInt8, 1, "more"));
    EXPECT_TRUE(Structure::registerStructure(*copy));
    EXPECT_EQ(Structure::structureByName("Record"), std::min(structure.get(), copy.get()));
    EXPECT_EQ(Structure::structureByName(nullptr), nullptr);
    EXPECT_EQ(Structure::structureByName("record"), nullptr);
    EXPECT_TRUE(Structure::deregisterStructure(*copy));
    EXPECT_FALSE(Structure::deregisterStructure(*copy));
    EXPECT_EQ(copy->refCount(), 1);
    Structure::deleteAllStructures();
    EXPECT_TRUE(Structure::allStructures().empty());
    EXPECT_EQ(structure->refCount(), 1);
}

TEST_F(StructureGoldenTest, Debug_ListsMembersAndDefaults)
{
    const auto structure =
        Structure::make("Point", {{Member::kUInt8, 1, "a"}, {Member::kDouble, 1, "b"}, {Member::kUInt8, 1, "c"}});
    const std::string members = "Structure 'Point'\n"
                                "Total Size = 17\n"
                                "Member List\n"
                                "{\n"
                                "    Member[0] = 'a' uint8[1] +0\n"
                                "    Member[1] = 'b' double[1] +8\n"
                                "    Member[2] = 'c' uint8[1] +16\n"
                                "}\n"
                                "Default Value Memory Block\n"
                                "{\n";
    EXPECT_EQ(test::printed(structure.get()), members + "    No default values provided\n}\n");
    structure->defaultData();
    EXPECT_EQ(test::printed(structure.get()), members + "    00 00 00 00 00 00 00 00   00 00 00 00 00 00 00 00\n"
                                                        "    00 -- -- -- -- -- -- --   -- -- -- -- -- -- -- --\n"
                                                        "}\n");
}

TEST_F(StructureGoldenTest, Debug_ListsTypesAndRegistry)
{
    std::string types = "vumo::Data::Structure Static Data\n"
                        "{\n"
                        "    Default structure name = structure\n"
                        "    Recognized Data Types\n"
                        "    {\n";
    for (unsigned int number = 0; number < Member::kInvalidType; ++number)
    {
        const auto type = static_cast<Member::eDataType>(number);
        types += "        [" + std::to_string(number) + "] = " + Member::typeName(type) +
                 ", size = " + std::to_string(Member::typeSize(type)) +
                 "bytes, alignment = " + std::to_string(Member::typeAlignment(type)) + "bytes\n";
    }
    types += "        [14] = invalid\n"
             "    }\n";
    EXPECT_EQ(test::printed<Structure>(nullptr), types + "    No registered structures\n}\n");
    const Ref<Structure> structure(new Structure("P"));
    ASSERT_TRUE(Structure::registerStructure(*structure));
    EXPECT_EQ(test::printed<Structure>(nullptr), types + "    Registered Structures\n"
                                                         "    {\n"
                                                         "        Structure[0]\n"
                                                         "        Structure 'P'\n"
                                                         "        Total Size = 0\n"
                                                         "        Member List\n"
                                                         "        {\n"
                                                         "        }\n"
                                                         "        Default Value Memory Block\n"
                                                         "        {\n"
                                                         "            No default values provided\n"
                                                         "        }\n"
                                                         "    }\n"
                                                         "}\n");
}

TEST_F(StructureTest, Walk_VisitsMembersInOrderAndStepsOnlyByThePrefixForm)
{
    const auto structure = test::recordStructure();
    std::string names;
    for (const Member& member : *structure)
        names += std::string(Member::name(&member)) + " ";
    EXPECT_EQ(names, "number label flag ");

    StructureIterator position = structure->begin();
    EXPECT_TRUE(position++ == position);
    EXPECT_EQ(position.index(), 0U);
    EXPECT_EQ((++position).index(), 1U);
    position = structure->end();
    EXPECT_FALSE(position.valid());
    EXPECT_EQ((++position).index(), 4294967295U);
    const Ref<Structure> empty(Structure::create());
    EXPECT_TRUE(empty->begin() == empty->end());
    EXPECT_TRUE(empty->end() != structure->end());
}

TEST_F(StructureTest, IteratorsWithoutAMember_ThrowWhenUsed)
{
    const auto structure = test::recordStructure();
    StructureIterator end = structure->end();
    const StructureIterator constEnd = end;
    EXPECT_EQ(test::thrownBy([&] { *end; }), "out_of_range: Member");
    EXPECT_EQ(test::thrownBy([&] { end.operator->(); }), "out_of_range: Member");
    EXPECT_EQ(test::thrownBy([&] { *constEnd; }), "out_of_range: Const Member");
    EXPECT_EQ(test::thrownBy([&] { constEnd.operator->(); }), "out_of_range: Const Member");

    StructureIterator third = structure->begin();
    ++third;
    ++third;
    *structure = *Structure::make("Short", {{Member::kInt8, 1, "a"}});
    EXPECT_EQ(test::thrownBy([&] { *third; }), "out_of_range: Member");
}

TEST_F(StructureTest, Iterators_KeepTheirStructureAlive)
{
    StructureIterator position;
    EXPECT_FALSE(position.valid());
    {
        const auto structure = test::recordStructure();
        position = structure->begin();
        const StructureIterator copy(position);
        EXPECT_EQ(structure->refCount(), 3);
    }
    EXPECT_EQ(position.structure()->refCount(), 1);
    const StructureIterator& itself = position;
    position = itself;
    EXPECT_STREQ(position.structure()->name(), "Record");
}

TEST_F(StructureTest, Footprint_CountsEveryPiece)
{
    const auto structure = test::recordStructure();
    const std::size_t names = sizeof("Record") + sizeof("number") + sizeof("label") + sizeof("flag");
    const std::size_t pieces = sizeof(Structure) + 3 * sizeof(Member) + names;
    structure->defaultData();
    EXPECT_EQ(test::footprintOf(structure.get()).totalSize(), pieces + 17);
    EXPECT_EQ(test::footprintOf(structure.get()).totalFragments(), 7U);

    const unsigned long long empty = test::footprintOf<Structure>(nullptr).totalSize();
    ASSERT_TRUE(Structure::registerStructure(*structure));
    EXPECT_EQ(test::footprintOf<Structure>(nullptr).totalSize(), empty + sizeof(Structure*));
}
} // namespace
} // namespace vumo::Data
