#include "tests/accessor/AccessorFixture.h"
#include "tests/support/RandomText.h"
#include "tests/support/ScratchLocale.h"

namespace vumo::test
{
namespace
{
using namespace std::string_literals;

/// One kind of scene files, and what it says of metadata that it does not write.
struct Kind
{
    const char* ending;
    std::string bare;
    std::string structureMessage;
    std::string nodeMessage;
    std::string sceneMessage;
};

std::vector<Kind> kinds()
{
    return {{".oa", "//Ovri ASCII 2014 scene\nselect -ne :a;\n// End of it\n",
             "Could not write structure chunk to file.", "Could not write node associations statement to file.",
             "Could not write scene associations statement to file."},
            {".ob", sceneWith(example::pluginChunk()), "Could not write structure chunk to in-memory trailer.",
             "Could not write node associations chunk to in-memory trailer.",
             "Could not write scene associations chunk to in-memory trailer."}};
}

Ref<Structure> labelStructure()
{
    return Structure::make("Label", {{Member::kString, 1, "text"}});
}

/// Writes metadata into bare scenes of both kinds, which must stay as they are.
class RefusedWriteTest : public AccessorFixture
{
protected:
    /// An accessor for a bare scene.
    std::unique_ptr<Accessor> openBare(const Kind& kind)
    {
        mFile = std::make_unique<ScratchFile>(kind.ending);
        mFile->setBytes(kind.bare);
        return readScene(mFile->name());
    }

    /// What a write of metadata for one node, or for the scene, says.
    std::string refusal(const Kind& kind, const Accessor::StructureSet& structures, const std::string& node,
                        const Associations& associations)
    {
        const auto accessor = openBare(kind);
        accessor->setStructures(structures);
        accessor->associations()[node] = associations;
        std::string errors;
        EXPECT_FALSE(accessor->write(errors));
        EXPECT_EQ(mFile->bytes(), kind.bare);
        return errors;
    }

    /// Sees that both kinds refuse the associations with those messages, at a node and at the scene.
    void expectRefused(const Accessor::StructureSet& structures, const Associations& associations,
                       const std::string& faults)
    {
        for (const Kind& kind : kinds())
        {
            SCOPED_TRACE(kind.ending);
            EXPECT_EQ(refusal(kind, structures, "Body", associations),
                      "The metadata of node 'Body' cannot be written:\n" + faults + kind.nodeMessage);
            EXPECT_EQ(refusal(kind, structures, "", associations),
                      "The metadata of the scene cannot be written:\n" + faults + kind.sceneMessage);
        }
    }

    std::unique_ptr<ScratchFile> mFile;
};

using RefusedWritePropertyTest = RefusedWriteTest;

TEST_F(RefusedWriteTest, AStructureThatDoesNotReadBack_IsNamedWithTheReason)
{
    const std::string own = "its name cannot stand in a text: ";
    const std::string members = "the name of its member ";
    const struct
    {
        const char* name;
        const char* member; // "": none
        std::string fault;
        bool isForAscii = false; // the other kind can write it
    } cases[] = {
        {"", "a", own + "it is empty"},
        {" Odd", "a", own + "it has whitespace at an end"},
        {"Odd\r", "a", own + "it has whitespace at an end"},
        {"O\ndd", "a", own + "it has a line break"},
        {"O:dd", "a", own + "it has a ':'"},
        {"O=dd", "a", own + "it has a '='"},
        {"Odd", "", "it has no members"},
        {"Odd", "a ", members + "'a ' cannot stand in a text: it has whitespace at an end"},
        {"Odd", "a\nint8=b", members + "'a\\nint8=b' cannot stand in a text: it has a line break"},
        {"Odd", "a:int8", members + "'a:int8' cannot stand in a text: it has a ':'"},
        {"Odd", "a=b", members + "'a=b' cannot stand in a text: it has a '='"},
        {"a\";select \"", "a", "a name has a double quote", true},
        {"Odd", "a\"b", "a name has a double quote", true},
        {"a\\", "a", "a name has a backslash", true},
        {"a\tb", "a", "a name has a control character", true},
        {"a[3]", "b[", ""},
        {"two words", "three more words", ""},
    };
    for (const auto& row : cases)
    {
        const Ref<Structure> structure(new Structure(row.name));
        structure->addMember(Member::kInt8, 1, row.member);
        const std::string shown = row.name == "O\ndd"s ? "O\\ndd" : row.name == "Odd\r"s ? "Odd\\x0D" : row.name;
        for (const Kind& kind : kinds())
        {
            SCOPED_TRACE(shown + ", " + row.member + ", " + kind.ending);
            const auto accessor = openBare(kind);
            accessor->setStructures({structure.get()});
            std::string errors;
            const bool isWritten = row.fault.empty() || (row.isForAscii && kind.ending == ".ob"s);
            EXPECT_EQ(accessor->write(errors), isWritten);
            EXPECT_EQ(mFile->bytes() != kind.bare, isWritten);
            const std::string name = row.name == "a\tb"s ? "a\\x09b" : shown;
            EXPECT_EQ(errors, isWritten ? ""
                                        : "Structure '" + name + "' cannot be written: " + row.fault + ".\n" +
                                              kind.structureMessage);
            if (isWritten)
            {
                EXPECT_EQ(**readScene(mFile->name())->structures().begin(), *structure);
            }
        }
    }
}

TEST_F(RefusedWriteTest, AMemberWithoutAType_IsNamed)
{
    const Ref<Structure> structure(new Structure("Odd"));
    ASSERT_TRUE(structure->addMember(static_cast<Member::eDataType>(15), 1, "a"));
    for (const Kind& kind : kinds())
    {
        EXPECT_EQ(refusal(kind, {structure.get()}, "Body", Associations()),
                  "Structure 'Odd' cannot be written: its member 'a' has no data type.\n" + kind.structureMessage);
    }
}

TEST_F(RefusedWriteTest, AStructureThatStreamsUse_IsWrittenUnlessItsNameHasTwoMeanings)
{
    const Ref<Structure> label = labelStructure();
    const Ref<Structure> weight = valueStructure("Weight");
    const Ref<Structure> equal = valueStructure("Weight");
    const Ref<Structure> other = Structure::make("Weight", {{Member::kDouble, 1, "Value"}});
    const Ref<Structure> odd = valueStructure("O=dd");
    Associations associations = associationsOf("vertex", "weights", *weight, 0, "1");
    const std::string differs = " differs from the structure of that name that is to be written.\n";
    expectRefused({other.get()}, associations, "Structure 'Weight' of stream 'weights' in channel 'vertex'" + differs);
    associations.channel("edge").setDataStream(Stream(*equal, "creases"));
    for (const Kind& kind : kinds())
    {
        SCOPED_TRACE(kind.ending);
        const auto accessor = openBare(kind);
        accessor->setStructures({valueStructure("Zero").get()});
        accessor->associations()["Body"] = associations;
        accessor->associations()[""] = associationsOf("info", "notes", *label, 0, "text");
        std::string errors;
        EXPECT_TRUE(accessor->write(errors)) << errors;
        EXPECT_EQ(accessor->structures().size(), 1U);
        const std::string bytes = mFile->bytes();
        EXPECT_LT(bytes.find("name=Zero"), bytes.find("name=Label"));
        EXPECT_LT(bytes.find("name=Label"), bytes.find("name=Weight"));
        const auto again = readScene(mFile->name());
        EXPECT_EQ(again->structures().size(), 3U);
        EXPECT_EQ(valueAt(*again, "Body", "vertex", "weights", 0), "1");

        accessor->associations()["Head"] = associationsOf("face", "areas", *other, 0, "1");
        EXPECT_FALSE(accessor->write(errors));
        EXPECT_EQ(errors, "The metadata of node 'Head' cannot be written:\n"
                          "Structure 'Weight' of stream 'areas' in channel 'face'" +
                              differs + kind.nodeMessage);
        EXPECT_EQ(mFile->bytes(), bytes);
        EXPECT_EQ(refusal(kind, {}, "Body", associationsOf("vertex", "odd", *odd, 0, "1")),
                  "The metadata of node 'Body' cannot be written:\n"
                  "Structure 'O=dd' cannot be written: its name cannot stand in a text: it has a '='.\n"
                  "It is the structure of stream 'odd' in channel 'vertex'.\n" +
                      kind.structureMessage);
    }
}

TEST_F(RefusedWriteTest, TextsThatDoNotReadBack_AreNamedWithTheirPlaces)
{
    const Ref<Structure> weight = valueStructure("Weight");
    const struct
    {
        Associations associations;
        std::string fault;
    } cases[] = {
        {associationsOf("vertex", "a\nb", *weight, 7, "1"),
         "Stream name 'a\\nb' at record 1 of stream 'a\\nb' in channel 'vertex' cannot be read back: it has a line "
         "break\n1 error found, Stream may not be written correctly\n"},
        {associationsOf("vertex ", "weights", *weight, 7, "1"),
         "Channel name 'vertex ' at record 1 of channel 'vertex ' cannot be read back: it has whitespace at an end\n"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.fault);
        expectRefused({weight.get()}, row.associations,
                      row.fault + "1 error found, Channel may not be written correctly\n"
                                  "1 error found, Associations may not be written correctly\n");
    }
}

TEST_F(RefusedWriteTest, ANodeNameThatAFileCannotCarry_IsNamed)
{
    const Ref<Structure> weight = valueStructure("Weight");
    const Associations associations = associationsOf("vertex", "weights", *weight, 0, "1");
    const struct
    {
        std::string name;
        std::string shown;
        const char* inAscii; // empty: can be written
        bool isForBinary = true;
    } cases[] = {
        {"a;select", "a;select", "a \";\""},
        {"a\"b", "a\"b", "a double quote"},
        {"a \\b", "a \\b", "a blank and a backslash"},
        {"a\nselect", "a\\nselect", "a line break"},
        {"a\0b"s, "a\\x00b", "a zero byte", false},
        {"//a", "//a", "a \"//\""},
        {"a//b", "a//b", "a \"//\""},
        {"-scn", "-scn", "the form of the scene's flag"},
        {"two words", "", ""},
        {"-scn ", "", ""},
        {" // End of; it", "", ""},
        {"\ta\tb", "", ""},
        {"a\\b\\", "", ""},
        {"a\rb\r", "", ""},
        {"a\x7F\x01", "", ""},
        {"select", "", ""},
        {"|group|Zoë:a=b[3]\xFF", "", ""},
    };
    for (const auto& row : cases)
    {
        for (const Kind& kind : kinds())
        {
            SCOPED_TRACE(row.name + kind.ending);
            const bool isAscii = kind.ending == ".oa"s;
            const std::string head = "The metadata of node '" + row.shown + "' cannot be written:\n";
            if (isAscii ? *row.inAscii != '\0' : !row.isForBinary)
            {
                EXPECT_EQ(refusal(kind, {weight.get()}, row.name, associations),
                          head +
                              (isAscii ? "Its name has "s + row.inAscii + ", which a statement cannot carry.\n"
                                       : "Its name has a zero byte, where it would end.\n") +
                              kind.nodeMessage);
                continue;
            }
            openBare(kind);
            EXPECT_EQ(attach(mFile->name(), row.name, associations), "");
            EXPECT_EQ(valueAt(*readScene(mFile->name()), row.name, "vertex", "weights", 0), "1");
        }
    }
}

TEST_F(RefusedWriteTest, ATextThatTheLocaleWouldReadAsAnother_IsRefused)
{
    const ScratchLocale locale("GBK");
    if (!locale.isSet())
        GTEST_SKIP() << "localedef cannot make a locale here";
    const Ref<Structure> weight = valueStructure("Weight");
    const Kind ascii = kinds()[0];
    const Kind binary = kinds()[1];
    const auto at = [&](const std::string& index) {
        return associationsOf("vertex", "weights", *weight, IndexString(index), "1");
    };
    EXPECT_EQ(refusal(ascii, {weight.get()}, "Body", at("\x81")), // a character together with the backslash of "\n"
              "The metadata of node 'Body' cannot be written:\n"
              "A name, an index or a value has bytes that are no character of the locale, and that would not be read "
              "back.\n" +
                  ascii.nodeMessage);
    EXPECT_EQ(refusal(binary, {weight.get()}, "Body", at("中")), // no text in GBK, but would be read as one in UTF-8
              "The metadata of node 'Body' cannot be written:\n"
              "A text cannot be read back: the encoding of the locale cannot be converted to UTF-8 and back without a "
              "loss.\n" +
                  binary.nodeMessage);
    const Ref<Structure> foreign = Structure::make("中", {{Member::kInt8, 1, "a"}});
    EXPECT_EQ(
        refusal(binary, {foreign.get()}, "Body", Associations()),
        "Structure '中' cannot be written: the encoding of the locale cannot be converted to UTF-8 and back without a "
        "loss.\n" +
            binary.structureMessage);
}

/// All that is written for the accessor's names.
std::string contentOfNodes(const Accessor& accessor)
{
    std::string content;
    for (const auto& entry : accessor.associations())
    {
        appendDelimited(content += "\nnode ", entry.first);
        content += contentOf(entry.second);
    }
    return content;
}

TEST_F(RefusedWritePropertyTest, WhatIsWritten_IsReadBackWhateverTheTexts)
{
    Random random;
    SCOPED_TRACE(random.seedText());
    const Ref<Structure> label = labelStructure();
    const auto tryWrites = [&](const char* locale) {
        SCOPED_TRACE(locale);
        int written = 0;
        for (int round = 0; round < 600 && !HasFailure(); ++round)
        {
            const Kind kind = kinds()[static_cast<std::size_t>(round) % 2];
            const auto accessor = openBare(kind);
            accessor->setStructures({label.get()});
            accessor->associations()[randomText(random)] = randomAssociations(random, *label);
            accessor->setDurability(Accessor::kMemoryOnly);
            std::string errors;
            const bool isWritten = accessor->write(errors);
            EXPECT_EQ(isWritten, errors.empty());
            if (isWritten)
                EXPECT_EQ(contentOfNodes(*readScene(mFile->name())), contentOfNodes(*accessor)) << mFile->bytes();
            else
                EXPECT_EQ(mFile->bytes(), kind.bare);
            written += isWritten ? 1 : 0;
        }
        EXPECT_GT(written, 10);
    };
    tryWrites("the locale of the tests");
    for (const char* encoding : {"GBK", "ISO-8859-1", "UTF-8"})
    {
        const ScratchLocale locale(encoding);
        if (locale.isSet())
            tryWrites(encoding);
    }
}

TEST_F(RefusedWritePropertyTest, AStructure_IsRefusedExactlyIfItsTextGivesAnother)
{
    Random random;
    SCOPED_TRACE(random.seedText());
    for (int round = 0; round < 2000 && !HasFailure(); ++round)
    {
        const Ref<Structure> structure(new Structure(randomValue(random).c_str()));
        for (unsigned int members = random.below(3); members > 0; --members)
            structure->addMember(static_cast<Member::eDataType>(random.below(16)), random.below(3),
                                 randomValue(random).c_str());
        std::ostringstream text;
        StructureSerializerRaw::theFormat()->write(*structure, text);
        std::istringstream in(text.str());
        std::string errors;
        const Ref<Structure> copy(StructureSerializerRaw::theFormat()->read(in, errors));
        const bool isReadBack = copy && *copy == *structure;

        const Kind kind = kinds()[static_cast<std::size_t>(round) % 2];
        const auto accessor = openBare(kind);
        accessor->setStructures({structure.get()});
        accessor->setDurability(Accessor::kMemoryOnly);
        errors.clear();
        const bool isWritten = accessor->write(errors);
        const bool isCarried = errors.find("a name has") == std::string::npos; // by a statement in quotes
        const bool isConverted = errors.find("without a loss") == std::string::npos;
        EXPECT_EQ(isWritten, isReadBack && isCarried && isConverted) << text.str();
        if (isWritten)
        {
            EXPECT_EQ(**readScene(mFile->name())->structures().begin(), *structure);
        }
        EXPECT_EQ(errors.find("its text gives another"), std::string::npos) << "the reason is known: " << text.str();
    }
}
} // namespace
} // namespace vumo::test
