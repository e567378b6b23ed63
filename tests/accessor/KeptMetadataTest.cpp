#include "tests/accessor/AccessorFixture.h"

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
        return isAscii() ? "dataStructure  -fmt \"" + format + "\" -as \"" + text + "\";\n"
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
} // namespace
} // namespace vumo::test
