#include "tests/accessor/AccessorFixture.h"
#include "tests/support/ScratchLocale.h"

#include <algorithm>
#include <random>

namespace vumo::test
{
namespace
{
const char* const kWeight = "name=Weight:float=Value";
const char* const kLabel = "name=Label:string=Text";

/// The text of associations with one value of that structure.
std::string textWith(const std::string& structure, const std::string& value, const std::string& indexType = "numeric")
{
    return "channel\nname vertex\nstream\nname weights\nindexType " + indexType + "\nstructure " + structure + "\n0\n" +
           value + "\nendStream\nendChannel\nendAssociations\n";
}

/// Writes the blocks of one kind of scene file as any program may do that knows the format.
struct Kind
{
    std::string ending;

    bool isAscii() const { return ending == ".oa"; }

    std::string structure(const std::string& text, const std::string& format = "raw") const
    {
        return isAscii() ? "dataStructure -fmt \"" + format + "\" -as \"" + text + "\";\n"
                         : chunk("DATS", format + kZero + text + kZero);
    }

    std::string node(const std::string& name, std::string text, const std::string& format = "raw") const
    {
        if (!isAscii())
            return chunk(name.empty() ? "SMTD" : "MTDA", name + kZero + format + kZero + text + kZero);
        for (std::size_t i = 0; (i = text.find_first_of("\n\"", i)) != std::string::npos; i += 2)
            text.replace(i, 1, text[i] == '\n' ? "\\n" : "\\\"");
        return "applyMetadata  -fmt \"" + format + "\" -v \"" + text + "\" \n\t" + (name.empty() ? "-scn" : name) +
               ";\n";
    }

    /// What no program takes for metadata.
    std::string foreign(const std::string& text) const { return isAscii() ? "// " + text + "\n" : chunk("HOST", text); }

    std::string scene(const std::string& metadata) const
    {
        return isAscii() ? "//Ovri ASCII 2014 scene\nselect -ne :a;\n" + metadata + "// End of it\n"
                         : sceneWith(metadata);
    }
};

const Kind kKinds[] = {{".oa"}, {".ob"}};

class KeptMetadataTest : public AccessorFixture
{
protected:
    /// An accessor that has read the wanted nodes of a scene with that metadata, and keeps the others.
    std::unique_ptr<Accessor> read(const Kind& kind, const std::string& metadata,
                                   const std::set<std::string>* structures = nullptr,
                                   const std::set<std::string>* nodes = nullptr)
    {
        mFile = std::make_unique<ScratchFile>(kind.ending);
        mFile->setBytes(kind.scene(metadata));
        auto accessor = Accessor::accessorByExtension(mFile->name());
        accessor->setUnread(Accessor::kKeep);
        accessor->setDurability(Accessor::kMemoryOnly);
        mErrors.clear();
        EXPECT_TRUE(accessor->read(mFile->name(), structures, nodes, mErrors));
        EXPECT_EQ(mErrors, "");
        return accessor;
    }

    /// What the file holds after a write.
    std::string written(const Accessor& accessor)
    {
        mErrors.clear();
        EXPECT_TRUE(accessor.write(mErrors)) << mErrors;
        expectToldPlaces(accessor);
        return mFile->bytes();
    }

    /// What the file holds once another accessor has read it, with nothing but "a" wanted, and written it.
    std::string readAgain(const Accessor& accessor)
    {
        const std::set<std::string> a = {"a"};
        auto other = Accessor::accessorByExtension(mFile->name());
        other->setUnread(Accessor::kKeep);
        EXPECT_TRUE(other->read(mFile->name(), nullptr, &a, mErrors)) << mErrors;
        EXPECT_EQ(other->structures().size(), accessor.structures().size());
        return written(*other);
    }

    /// The metadata of the file as one accessor holds it that keeps the rest.
    std::unique_ptr<Accessor> readKept()
    {
        auto accessor = Accessor::accessorByExtension(mFile->name());
        accessor->setUnread(Accessor::kKeep);
        accessor->setDurability(Accessor::kMemoryOnly);
        EXPECT_TRUE(accessor->read(mFile->name(), mErrors)) << mErrors;
        return accessor;
    }

    /// What is told about unread blocks goes for the file.
    void expectToldPlaces(const Accessor& accessor)
    {
        const std::string bytes = mFile->bytes();
        for (const UnreadBlock& block : accessor.unread())
        {
            ASSERT_LE(block.position + block.length, bytes.size());
            const std::string there = bytes.substr(block.position, block.length);
            const bool isStatement = there.back() == ';';
            const bool isStructure = block.kind == UnreadBlock::kStructure;
            EXPECT_EQ(there.find(isStatement          ? (isStructure ? "dataStructure " : "applyMetadata ")
                                 : isStructure        ? "DATS"
                                 : block.name.empty() ? "SMTD"
                                                      : "MTDA"),
                      0U);
            EXPECT_NE(there.find(block.name), std::string::npos);
            EXPECT_NE(there.find(block.format), std::string::npos);
        }
    }

    Associations weightOf(const std::string& value) const
    {
        return associationsOf("vertex", "weights", *mWeight, 0, value);
    }

    const Ref<Structure> mWeight = valueStructure("Weight");
    std::unique_ptr<ScratchFile> mFile;
    std::string mErrors;
};

TEST_F(KeptMetadataTest, WhatWasNotRead_StandsWhereItStood)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string weight = kind.structure(kWeight);
        const std::string odd = kind.structure("whatever", "odd");
        const std::string a = kind.node("a", textWith("Weight", "1.0"));
        const std::string b = kind.node("b", "whatever", "odd");
        const std::string c = kind.node("c", textWith("Weight", "0", "triple"));
        const std::string d = kind.node("d", textWith("Weight", "nonsense"));
        const std::string scene = kind.node("", textWith("Absent", "1"));
        const std::string host = kind.foreign("host");
        const std::string more = kind.foreign("more");
        const std::string all = weight + host + odd + d + a + more + scene + c + b + host;
        const std::set<std::string> names = {"a", "b", "c", "d", ""};
        const auto accessor = read(kind, all, nullptr, &names);
        std::vector<std::string> told;
        for (const UnreadBlock& block : accessor->unread())
            told.push_back(block.name + ":" + block.format + ":" + block.why.substr(0, block.why.find('\n')));
        EXPECT_EQ(told, (std::vector<std::string>{":odd:Could not find serializer for format odd",
                                                  "d:raw:Float value on or about character 77 is invalid",
                                                  ":raw:Structure 'Absent' not found",
                                                  "c:raw:Creator for index type 'triple' not found",
                                                  "b:odd:Could not find serializer for format odd"}));
        expectToldPlaces(*accessor);
        EXPECT_EQ(accessor->associations().size(), 1U);

        std::string bytes = written(*accessor);
        EXPECT_EQ(bytes.find(a), std::string::npos) << "what was read is written anew";
        EXPECT_EQ(readAgain(*accessor), bytes);

        // New entries go to the end, new structures after the last one; removed entries leave.
        accessor->associations().erase("a");
        accessor->associations()["z"] = weightOf("7");
        accessor->associations()["e"] = weightOf("8");
        const Ref<Structure> extra = valueStructure("Extra");
        Accessor::StructureSet structures = accessor->structures();
        structures.insert(extra.get());
        accessor->setStructures(structures);
        bytes = written(*accessor);
        EXPECT_LT(bytes.find(odd), bytes.find("Extra"));
        EXPECT_LT(bytes.find("Extra"), bytes.find(d + more + scene + c + b));
        EXPECT_LT(bytes.find(b), bytes.find(kind.isAscii() ? "\te;" : "e" + kZero + "raw"));
        EXPECT_EQ(readAgain(*accessor), bytes);
        EXPECT_EQ(accessor->unread().size(), 5U);

        // Entries under kept names go ahead of what was kept; clear() forgets the rest.
        accessor->associations()["b"] = weightOf("9");
        accessor->associations()["c"];
        bytes = written(*accessor);
        EXPECT_EQ(bytes.find(b), std::string::npos);
        EXPECT_EQ(bytes.find(c), std::string::npos);
        EXPECT_NE(bytes.find(d + more + scene), std::string::npos);
        EXPECT_EQ(accessor->unread().size(), 3U);
        accessor->clear();
        EXPECT_TRUE(accessor->unread().empty());
        bytes = written(*accessor);
        EXPECT_EQ(bytes, kind.scene(host + more + host));
    }
}

/// The bytes of the blocks of that name, one after the other.
std::string bytesOf(const std::string& file, const std::vector<UnreadBlock>& blocks, const std::string& name)
{
    std::string bytes;
    for (const UnreadBlock& block : blocks)
        bytes += block.name == name ? file.substr(block.position, block.length) : "";
    return bytes;
}

TEST_F(KeptMetadataTest, RandomScenesWithRandomFilters_LoseNothing)
{
    std::mt19937 random(20261122);
    const auto pick = [&](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    const char* const formats[] = {"raw", "raw", "raw", "odd"};
    const char* const values[] = {"1", "2", "0.5", "nonsense"};
    for (int round = 0; round < 400 && !HasFailure(); ++round)
    {
        SCOPED_TRACE(round);
        const Kind& kind = kKinds[round % 2];
        std::string metadata = kind.structure(kWeight);
        std::set<std::string> wanted;
        std::vector<std::string> foreign;
        for (std::size_t left = pick(12); left > 0; --left)
        {
            const std::string name(pick(6), 'n'); // the scene and five nodes, so some of them twice
            if (pick(2) == 0)
                wanted.insert(name);
            if (pick(4) == 0) // some too long to be written for what is written around them
                metadata += foreign.emplace_back(kind.foreign(std::to_string(left) + std::string(pick(2) * 5000, 'x')));
            metadata +=
                kind.node(name, textWith(pick(9) == 0 ? "Absent" : "Weight", values[pick(4)]), formats[pick(4)]);
        }
        const std::set<std::string> none;
        const auto all = read(kind, metadata);
        const auto nothing = read(kind, metadata, pick(2) == 0 ? &none : nullptr, &none);
        const std::string before = mFile->bytes();
        const std::vector<UnreadBlock> blocks = nothing->unread();
        EXPECT_LE(written(*nothing).size(), before.size()) << "what is outdone goes, all else stays";

        mFile->setBytes(before);
        auto accessor = Accessor::accessorByExtension(mFile->name());
        accessor->setUnread(Accessor::kKeep);
        accessor->setDurability(Accessor::kMemoryOnly);
        ASSERT_TRUE(accessor->read(mFile->name(), nullptr, &wanted, mErrors)) << mErrors;
        accessor->associations()["new"] = weightOf("8");
        const std::string after = written(*accessor);
        std::size_t place = 0;
        for (const std::string& text : foreign)
        {
            place = after.find(text, place);
            ASSERT_NE(place, std::string::npos);
        }
        auto again = Accessor::accessorByExtension(mFile->name());
        again->setUnread(Accessor::kKeep);
        ASSERT_TRUE(again->read(mFile->name(), nullptr, nullptr, mErrors)) << mErrors;
        EXPECT_EQ(again->associations().size(), all->associations().size() + 1);
        for (const auto& [name, associations] : all->associations())
        {
            EXPECT_EQ(valueAt(*again, name, "vertex", "weights", 0), valueAt(*all, name, "vertex", "weights", 0));
            if (wanted.count(name) == 0)
            {
                EXPECT_EQ(bytesOf(after, accessor->unread(), name), bytesOf(before, blocks, name)) << name;
            }
        }
        for (const UnreadBlock& block : all->unread())
            EXPECT_EQ(bytesOf(after, again->unread(), block.name), bytesOf(before, blocks, block.name)) << block.name;
    }
}

TEST_F(KeptMetadataTest, OfTwoBlocksForOneName_TheOneThatAReadGivesCounts)
{
    const std::set<std::string> none;
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string first = kind.node("Body", textWith("Weight", "1"));
        const std::string second = kind.node("Body", textWith("Weight", "2"));
        const std::string odd = kind.node("Body", "whatever", "odd");
        const std::set<std::string> body = {"Body"};
        for (const std::set<std::string>* const names : {static_cast<const std::set<std::string>*>(nullptr), &body})
        {
            const auto accessor = read(kind, kind.structure(kWeight) + first + second, nullptr, names);
            EXPECT_EQ(valueAt(*accessor, "Body", "vertex", "weights", 0), "2");
            const auto unreadable = read(kind, kind.structure(kWeight) + first + odd, nullptr, names);
            EXPECT_TRUE(unreadable->associations().empty());
            EXPECT_EQ(written(*unreadable), kind.scene(kind.structure(kWeight) + odd));
        }
        const auto accessor = read(kind, kind.structure(kWeight) + odd + second, &none, &none);
        EXPECT_EQ(written(*accessor), kind.scene(kind.structure(kWeight) + second));
        EXPECT_EQ(accessor->unread().size(), 2U);
    }
}

TEST_F(KeptMetadataTest, WhileAssociationsAreKept_SoAreTheLayoutsThatTheyUse)
{
    const std::set<std::string> none;
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string a = kind.node("a", textWith("Weight", "1"));
        const std::string all = kind.structure(kWeight) + kind.structure(kLabel) + a;
        const auto accessor = read(kind, all, nullptr, &none);
        EXPECT_EQ(accessor->structures().size(), 2U);
        accessor->setStructures({});
        EXPECT_EQ(written(*accessor), kind.scene(all));

        const Ref<Structure> other = Structure::make("Weight", {{Member::kDouble, 1, "Value"}});
        const Ref<Structure> fresh = valueStructure("Fresh");
        accessor->associations()["b"] = associationsOf("vertex", "weights", *other, 0, "2");
        mErrors.clear();
        EXPECT_FALSE(accessor->write(mErrors));
        EXPECT_THAT(mErrors, testing::StartsWith("Structure 'Weight' differs from the structure of that name in the "
                                                 "file, which metadata may use that was not read.\n"));
        EXPECT_EQ(mFile->bytes(), kind.scene(all));
        accessor->associations()["a"]; // now nothing is kept that may use it
        EXPECT_NE(written(*accessor).find("double"), std::string::npos);

        const auto mixed = read(kind, all + kind.structure("name=Late:float=Value") + kind.foreign("host"));
        mixed->associations()["a"] = associationsOf("vertex", "weights", *fresh, 0, "3");
        const std::string bytes = written(*mixed);
        EXPECT_TRUE(kind.isAscii() || bytes.find("Fresh:") < bytes.find("structure Fresh")) << "it could not be read";
        EXPECT_EQ(valueAt(*readScene(mFile->name()), "a", "vertex", "weights", 0), "3");
    }
}

TEST_F(KeptMetadataTest, AheadOfTheFirstStructure_TheHostKeepsItsChunks)
{
    const Kind& kind = kKinds[1];
    const std::string ahead = kind.node("a", "endAssociations\n") + kind.node("b", "whatever", "odd");
    const std::string rest = kind.structure(kWeight) + kind.node("c", textWith("Weight", "1"));
    const std::set<std::string> none;
    const auto accessor = read(kind, ahead + rest, nullptr, &none);
    EXPECT_EQ(accessor->unread().size(), 3U);
    EXPECT_EQ(written(*accessor), kind.scene(ahead + rest));
    accessor->associations()["b"] = weightOf("4");
    EXPECT_EQ(written(*accessor).find(ahead), kind.scene("").size() - 24) << "they are not carried twice, nor replaced";
    EXPECT_EQ(valueAt(*readKept(), "b", "vertex", "weights", 0), "4");
}

TEST_F(KeptMetadataTest, AFileThatSomebodyElseHasChanged_IsNotWritten)
{
    const std::set<std::string> none;
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string a = kind.node("a", textWith("Weight", "1"));
        const auto accessor = read(kind, kind.structure(kWeight) + a, nullptr, &none);
        for (const std::string& metadata :
             {kind.structure(kWeight) + kind.node("a", textWith("Weight", "2")), kind.structure(kWeight) + a + a,
              kind.structure(kWeight), kind.node("b", textWith("Weight", "1")) + a})
        {
            mFile->setBytes(kind.scene(metadata));
            for (const Accessor::eConflict conflict : {Accessor::kRefuse, Accessor::kOverwrite})
            {
                accessor->setConflict(conflict);
                mErrors.clear();
                EXPECT_FALSE(accessor->write(mErrors));
                EXPECT_THAT(mErrors, testing::HasSubstr("has been changed by somebody else since it was read."));
                EXPECT_EQ(mFile->bytes(), kind.scene(metadata));
            }
        }
        // What the host does to its own lines and chunks is no matter.
        const std::string moved = kind.foreign("new") + kind.structure(kWeight) + kind.foreign("more") + a;
        mFile->setBytes(kind.scene(moved));
        EXPECT_EQ(written(*accessor), kind.scene(moved));

        // Where all of it was read, nothing is kept that could be lost.
        const auto whole = read(kind, kind.structure(kWeight) + a);
        mFile->setBytes(kind.scene(kind.structure(kWeight) + a + kind.node("b", textWith("Weight", "2"))));
        mErrors.clear();
        EXPECT_FALSE(whole->write(mErrors));
        mErrors.clear();
        whole->setConflict(Accessor::kOverwrite);
        const std::string overwritten = written(*whole);
        EXPECT_EQ(readKept()->associations().size(), 1U);
        EXPECT_TRUE(whole->readMore({"a"}, mErrors)) << "it goes on from there: " << mErrors;
        EXPECT_EQ(readAgain(*whole), overwritten);
    }
}

TEST_F(KeptMetadataTest, Damage_FailsTheReadAsItDoesOtherwise)
{
    const std::set<std::string> none;
    for (const char* const statement :
         {"applyMetadata -fmt \"raw\" -v \"x\" Body;\n", "applyMetadata -fmt \"raw\" -v \"x\" \n\t\tBody\n",
          "applyMetadata -fmt \"raw\" -v \n\t\tBody;\n",
          "applyMetadata -fmt \"raw\" -v \"x\"; undo \"y\" \n\t\tBody;\n", "dataStructure -fmt \"raw\";\n"})
    {
        SCOPED_TRACE(statement);
        mFile = std::make_unique<ScratchFile>(".oa");
        mFile->setBytes(kKinds[0].scene(statement));
        OvriAsciiFileAccessor accessor;
        accessor.setUnread(Accessor::kKeep);
        EXPECT_FALSE(accessor.read(mFile->name(), &none, &none, mErrors));
        EXPECT_TRUE(accessor.unread().empty());
    }
    for (const std::string& trailer :
         {chunk("MTDA", "Body"), chunk("MTDA", "Body" + kZero + "raw"), chunk("DATS", "raw"),
          "MTDA" + bigEndian(0, 4) + bigEndian(64, 8) + std::string(56, 'x')})
    {
        mFile = std::make_unique<ScratchFile>(".ob");
        mFile->setBytes(sceneWith(trailer));
        OvriBinaryFileAccessor accessor;
        accessor.setUnread(Accessor::kKeep);
        EXPECT_FALSE(accessor.read(mFile->name(), &none, &none, mErrors));
    }
}

TEST_F(KeptMetadataTest, RichScenesOfBothKinds_AreExactToTheByteWhateverIsKept)
{
    const std::set<std::string> body = {"body"};
    for (const auto& [ending, before, after] : kRichScenes)
    {
        for (const std::set<std::string>* const names : {&body, static_cast<const std::set<std::string>*>(nullptr)})
        {
            SCOPED_TRACE(ending);
            mFile = std::make_unique<ScratchFile>(ending);
            mFile->setBytes(before);
            const auto accessor = Accessor::accessorByExtension(mFile->name());
            accessor->setUnread(Accessor::kKeep);
            accessor->setDurability(Accessor::kMemoryOnly);
            ASSERT_TRUE(accessor->read(mFile->name(), nullptr, names, mErrors)) << mErrors;
            EXPECT_EQ(written(*accessor), before);
            edit(*accessor);
            EXPECT_EQ(written(*accessor), after);
            EXPECT_EQ(accessor->unread().size(), names ? 2U : 0U);
        }
    }
}

std::vector<std::uint64_t> listedPositions(const Accessor& accessor)
{
    std::vector<std::uint64_t> positions;
    for (const ListedBlock& block : accessor.listed())
        positions.push_back(block.position);
    return positions;
}

TEST_F(KeptMetadataTest, AListingOfARead_TellsNothingOfWhatTheReadPutsAside)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string metadata = kind.structure(kWeight) + kind.structure(kLabel) +
                                     kind.node("b", textWith("Weight", "1")) + kind.node("b", textWith("Weight", "2"));
        read(kind, metadata);
        std::vector<ListedBlock> all;
        ASSERT_TRUE(Accessor::list(mFile->name(), all, mErrors)) << mErrors;
        ASSERT_EQ(all.size(), 4U);
        const std::set<std::string> weight = {"Weight"};
        for (const Accessor::eUnread unread : {Accessor::kDrop, Accessor::kKeep})
        {
            const auto accessor = Accessor::accessorByExtension(mFile->name());
            accessor->setUnread(unread);
            accessor->setListing(Accessor::kListRead);
            ASSERT_TRUE(accessor->read(mFile->name(), &weight, nullptr, mErrors)) << mErrors;
            EXPECT_EQ(listedPositions(*accessor), (std::vector<std::uint64_t>{all[0].position, all[3].position}));
        }
    }
}

TEST_F(KeptMetadataTest, List_TakesNamesAsAReadDoes)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const auto accessor = read(kind, kind.structure(" float=Value: name\t= Weight ") +
                                             kind.node("a", "channel\nstream\nname \t\vweights \nstructure Weight\n"
                                                            "endStream\nendChannel\nendAssociations\n"));
        std::vector<ListedBlock> entries;
        ASSERT_TRUE(Accessor::list(mFile->name(), entries, mErrors)) << mErrors;
        EXPECT_EQ(entries.front().name, (*accessor->structures().begin())->name());
        const Channel& channel = *accessor->associations()["a"].begin();
        ASSERT_EQ(entries.back().channels.size(), 1U);
        EXPECT_EQ(entries.back().channels[0].name, channel.name());
        EXPECT_TRUE(channel.findDataStream(entries.back().channels[0].streams.at(0).name));
    }
}

TEST_F(KeptMetadataTest, List_TellsWhatStandsInAFileWithoutReadingIt)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string metadata = kind.structure(kWeight) + kind.node("a", "whatever", "odd") +
                                     kind.node("b", textWith("Absent", "nonsense\n\v\n1\n2", "triple")) +
                                     kind.node("b", textWith("Weight", "1")) + kind.structure("x", "odd");
        read(kind, metadata);
        std::vector<ListedBlock> entries;
        ASSERT_TRUE(Accessor::list(mFile->name(), entries, mErrors)) << mErrors;
        std::string names;
        std::uint64_t length = 0;
        for (const ListedBlock& entry : entries)
        {
            names += entry.name + ":" + entry.format + ";";
            length += entry.length + (kind.isAscii() ? 1 : 0);
        }
        EXPECT_EQ(names, "Weight:raw;a:odd;b:raw;b:raw;:odd;");
        EXPECT_EQ(length, metadata.size());
        EXPECT_EQ(entries[0].position, kind.scene("").size() - (kind.isAscii() ? 13 : 24));
        ASSERT_EQ(entries[2].channels.size(), 1U);
        ASSERT_EQ(entries[2].channels[0].streams.size(), 1U);
        const ListedBlock::Stream& stream = entries[2].channels[0].streams[0];
        EXPECT_EQ(entries[2].channels[0].name + ":" + stream.name, "vertex:weights");
        EXPECT_EQ(stream.indexType + ":" + stream.structure, "triple:Absent");
        EXPECT_EQ(stream.elements, 2U);
        EXPECT_EQ(stream.bytes, std::string("0\nnonsense\n1\n2\n").size());

        const std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(mFile->name());
        const std::set<std::string> none;
        accessor->setListing(Accessor::kListOnly);
        EXPECT_TRUE(accessor->read(mFile->name(), &none, &none, mErrors)) << mErrors;
        EXPECT_EQ(accessor->listed().size(), entries.size());
        EXPECT_TRUE(accessor->associations().empty() && accessor->structures().empty());
        EXPECT_FALSE(accessor->write(mErrors)) << "nothing was read, and all would be lost";
        EXPECT_EQ(accessor->failure().kind, Accessor::Failure::kChanged);
        accessor->setListing(Accessor::kListRead);
        accessor->setUnread(Accessor::kKeep);
        ASSERT_TRUE(accessor->read(mFile->name(), mErrors)) << mErrors;
        EXPECT_EQ(listedPositions(*accessor), (std::vector<std::uint64_t>{entries[0].position, entries[3].position}));

        accessor->clear();
        mFile->setBytes("nothing");
        EXPECT_FALSE(Accessor::list(mFile->name(), entries, mErrors));
        EXPECT_TRUE(entries.empty());
        EXPECT_FALSE(accessor->read(mFile->name(), mErrors));
        EXPECT_TRUE(accessor->listed().empty());
        EXPECT_EQ(accessor->failure().kind, Accessor::Failure::kNotScene);
    }
}

TEST_F(KeptMetadataTest, ReadMore_AddsWhatWasLeftOut)
{
    const std::set<std::string> none;
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const std::string all = kind.structure(kWeight) + kind.node("a", textWith("Weight", "1")) +
                                kind.node("b", textWith("Weight", "2")) + kind.node("c", "whatever", "odd");
        const auto accessor = read(kind, all, &none, &none);
        EXPECT_TRUE(accessor->readMore({"a", "absent"}, mErrors)) << mErrors;
        EXPECT_EQ(valueAt(*accessor, "a", "vertex", "weights", 0), "1");
        EXPECT_EQ(accessor->associations().size(), 1U);
        EXPECT_EQ(accessor->structures().size(), 1U);
        EXPECT_EQ(accessor->unread().size(), 2U) << "the structure was read, too";
        EXPECT_FALSE(accessor->readMore({"b", "c"}, mErrors));
        EXPECT_THAT(mErrors, testing::HasSubstr("format odd\nin the metadata of node 'c', from byte "));
        accessor->associations()["a"] = weightOf("7");
        EXPECT_TRUE(accessor->readMore({"a", "b"}, mErrors));
        EXPECT_EQ(valueAt(*accessor, "a", "vertex", "weights", 0), "7") << "an edit goes ahead";
        accessor->associations().erase("b");
        const std::string bytes = written(*accessor);
        EXPECT_NE(bytes.find(kind.node("c", "whatever", "odd")), std::string::npos);
        EXPECT_EQ(readKept()->associations().size(), 1U);
        mFile->setBytes(kind.scene(all));
        mErrors.clear();
        EXPECT_FALSE(accessor->readMore({"b"}, mErrors));
        EXPECT_THAT(mErrors, testing::HasSubstr("changed by somebody else"));
        accessor->clear();
        EXPECT_FALSE(accessor->readMore({"b"}, mErrors));
    }
}

TEST_F(KeptMetadataTest, ACharacterOfAMessage_IsFoundInTheFile)
{
    const ScratchLocale locale("ISO-8859-1"); // in which texts of binary scenes are shorter, where it can be made
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        const auto accessor = read(kind, kind.structure(kLabel) + kind.foreign("x") +
                                             kind.node("a", textWith("Label", "\"Zo\xC3\xAB\" \"left over\"")));
        ASSERT_EQ(accessor->unread().size(), 1U);
        const UnreadBlock block = accessor->unread().front();
        const std::string_view told = "Text '\"left over\"' on or about character ";
        ASSERT_EQ(block.why.find(told), 0U) << block.why;
        const std::uint64_t byte = accessor->findCharacter(block, std::stoul(block.why.substr(told.size())));
        EXPECT_EQ(mFile->bytes().substr(byte).find("left over"), kind.isAscii() ? 2U : 1U);
        EXPECT_LE(accessor->findCharacter(block, 1000000), block.position + block.length);
        mFile->setBytes("");
        EXPECT_EQ(accessor->findCharacter(block, 5), block.position);
    }
    // A value may go over lines, whose ends do not count carriage returns.
    const auto accessor =
        read(kKinds[0], "applyMetadata -fmt \"raw\" -v \"channel\r\n\tbad\\\\\r\n\tworse\r\n\" \r\n\ta;\r\n");
    ASSERT_EQ(accessor->unread().size(), 1U);
    const UnreadBlock block = accessor->unread().front();
    EXPECT_EQ(block.why.find("Unrecognized keyword 'bad\\' on or about character 9\nUnrecognized keyword 'worse' on or "
                             "about character 15\n"),
              0U)
        << block.why;
    EXPECT_EQ(accessor->findCharacter(block, 9) + 8, mFile->bytes().find("worse"));
    EXPECT_EQ(accessor->findCharacter(block, 15), mFile->bytes().find("worse"));
}
} // namespace
} // namespace vumo::test
