#include "vumo/accessor/OvriAsciiFileAccessor.h"

#include "tests/accessor/AccessorFixture.h"
#include "tests/support/ScratchLocale.h"

#include <clocale>
#include <fstream>
#include <set>
#include <vector>

namespace vumo::test
{
namespace
{
const std::string kHeader = "//Ovri ASCII 2014 scene\n";
const std::string kHost = "requires ovri \"2014\";\ncreateNode transform -n \"Body\";\n\tsetAttr \".t\" 1 2 3;\n";
const std::string kWeight = "dataStructure -fmt \"raw\" -as \"name=Weight:float=Value\";\n";
const std::string kTrailer = "// End of scene.oa\n";

/// The statement that applies one weight at index 0 to what `target` says.
std::string applying(const std::string& value, const std::string& target)
{
    return "applyMetadata -fmt \"raw\" -v \"channel\\nname vertex\\nstream\\nname weights\\nindexType numeric\\n"
           "structure Weight\\n0\\n" +
           value + "\\nendStream\\nendChannel\\nendAssociations\\n\" \n\t\t" + target + ";\n";
}

class OvriAsciiFileAccessorTest : public AccessorFixture
{
protected:
    /// What a read of that file says; empty when it is read well.
    std::string readErrors(const std::string& bytes)
    {
        mFile.setBytes(bytes);
        OvriAsciiFileAccessor accessor;
        std::string errors = "earlier;";
        const bool isRead = accessor.read(mFile.name(), errors);
        EXPECT_EQ(isRead, errors == "earlier;") << errors;
        EXPECT_TRUE(isRead || (accessor.structures().empty() && accessor.associations().empty()));
        return isRead ? "" : errors;
    }

    std::string weightOf(const Accessor& accessor, const std::string& node) const
    {
        return valueAt(accessor, node, "vertex", "weights", 0);
    }

    /// The file after it was read and rewritten with nothing changed.
    std::string rewritten(const std::string& bytes)
    {
        mFile.setBytes(bytes);
        std::string errors;
        const auto accessor = readScene(mFile.name());
        accessor->setDurability(Accessor::kMemoryOnly); // hundreds of writes need not wait for the disk
        EXPECT_TRUE(accessor->write(errors)) << errors;
        return mFile.bytes();
    }

    ScratchFile mFile{".oa"};
};

TEST_F(OvriAsciiFileAccessorTest, TheHeader_DecidesWhetherAFileIsSupported)
{
    const struct
    {
        std::string bytes;
        const char* errors;
    } cases[] = {
        {"", "Error reading header."},
        {"\n", "Header too small."},
        {"//Ovri ASCII 2014 scen\n", "Header too small."},
        {"//Ovri Ascii 2014 scene\n", "Unexpected header start."},
        {"//Ovri ASCII 2014 scene \n", "Unexpected header end."},
        {"//Ovri ASCII 2014 " + std::string(5000, 'x') + " scene\n", ""},
        {"//Ovri ASCII 2014 " + std::string(1000, 'x') + " scene" + std::string(1001, 'x') + "\n",
         "Unexpected header end."},
        {"//Ovri ASCII 2013 scene\n", "Unsupported year."},
        {"//Ovri ASCII ff05 scene\n", "Unsupported year."},
        {"//Ovri ASCII 2014 scene\r\n", ""},
        {"//Ovri ASCII 2014ff05 scene", ""},
    };
    for (const auto& [bytes, errors] : cases)
    {
        SCOPED_TRACE(bytes.substr(0, 40));
        EXPECT_EQ(readErrors(bytes), errors);
        EXPECT_EQ(OvriAsciiFileAccessor().isFileSupported(mFile.name()), *errors == '\0');
    }
}

TEST_F(OvriAsciiFileAccessorTest, Read_RefusesFaultyStatementsWithTheirMessages)
{
    const std::string apply = "applyMetadata -fmt \"raw\" -v ";
    const char* const noStructure = "Error tokenizing format/value for structure.";
    const char* const noName = "Could not find Associations name.";
    const struct
    {
        std::string statement;
        const char* message;
        const char* place;
    } cases[] = {
        {"dataStructure -fmt \"raw\" -as \"name=A;\n", noStructure, "a structure"},
        {"dataStructure -fmt \"raw\" -as \"name=A:int32=a\"\n", noStructure, "a structure"},
        {"dataStructure -fmt \"odd\" -as \"name=A:int32=a\";\n", "Could not find serializer for format odd",
         "structure 'A'"},
        {"dataStructure -fmt \"raw\" -as \"name=A\";\n", "Structures must have a name and at least one member",
         "structure 'A'"},
        {apply + "\"endAssociations\\n\" Body;\n", noName, "metadata without a name"},
        {apply + "\"endAssociations\\n\" \n\t\t;\n", noName, "metadata without a name"},
        {apply + "\"endAssociations\\n\" \n\t\t\"\";\n", noName, "metadata without a name"},
        {apply + "\n\t\tBody;\n", "Error tokenizing format/value for associations.", "the metadata of node 'Body'"},
        {"dataStructure -fmt \"raw\" -as \"name=A:int32=a\"; undo;\n", noStructure, "a structure"},
        {"dataStructure -fmt \"raw\" -as \"name=A:int32=a\"; setFoo -x \"y\";\n", noStructure, "a structure"},
        {"dataStructure -fmt \"raw\" -as \"name=A:int32=a\"\n\tfile -r x;\n", noStructure, "a structure"},
        {apply + "\"endAssociations\\n\" \n\t\t\"no de\"; setFoo \"x\";\n", noName, "metadata without a name"},
        {apply + "\"endAssociations\\n\" \n\t\tBody; undo;\n", noName, "metadata without a name"},
        {apply + "\"endAssociations\\n\" \n\t\t\"a;b\"; undo;\n", noName, "metadata without a name"},
        {"applyMetadata -fmt \"odd\" -v \"x\" \n\t\t-scn;\n", "Could not find serializer for format odd",
         "the metadata of the scene"},
        {apply + "\"endAssociations\\n\" \n\t\tBody\n\t\t// a comment;\n", noName, "metadata without a name"},
    };
    const std::string above = kHeader + kHost;
    std::string all;
    std::string allErrors = "earlier;";
    for (const auto& [statement, message, place] : cases)
    {
        SCOPED_TRACE(statement);
        const auto expected = [&, what = message, where = place](std::size_t position) {
            return std::string(what) + "\nin " + where + ", from byte " + std::to_string(position) + " of " +
                   mFile.name() + "\n";
        };
        EXPECT_EQ(readErrors(above + statement + kTrailer), "earlier;" + expected(above.size()));
        allErrors += expected(above.size() + all.size());
        all += statement;
    }
    EXPECT_EQ(readErrors(above + all + kTrailer), allErrors) << "all of them, in the order of the file";
    std::string errors = "replaced";
    OvriAsciiFileAccessor accessor;
    EXPECT_FALSE(accessor.read("", errors));
    EXPECT_EQ(errors, "Empty file name.");
    EXPECT_FALSE(accessor.read("/nowhere/scene.oa", errors));
    EXPECT_EQ(errors, "Could not open /nowhere/scene.oa");
}

TEST_F(OvriAsciiFileAccessorTest, Read_CountsNodesThatOnlyLackAStructureToldBefore)
{
    std::string bytes = kHeader + kHost + applying("1", "a") + applying("2", "b") + applying("nonsense", "c") + "\n";
    const std::string last = "' not found\n1 error found, Stream not created\n1 error found, Channel not created\n"
                             "1 error found, Associations not created\nin the metadata of node 'a', from byte " +
                             std::to_string((kHeader + kHost).size()) + " of " + mFile.name() + "\n";
    EXPECT_EQ(readErrors(bytes + kTrailer), "earlier;Structure 'Weight" + last +
                                                "The metadata of 2 more nodes cannot be read for lack of such "
                                                "structures.\n");
    std::string faulty = kWeight;
    faulty.replace(faulty.find("float"), 5, "flood");
    for (int i = 0; i < 9999; ++i)
        bytes += applying("3", "node" + std::to_string(i));
    const std::string errors = readErrors(bytes + faulty + kTrailer);
    EXPECT_THAT(errors, testing::HasSubstr("in structure 'Weight', from byte "));
    EXPECT_THAT(errors, testing::EndsWith("\nThe metadata of 10002 more nodes cannot be read for lack of such "
                                          "structures.\n"));
    EXPECT_LT(errors.size(), 600U) << errors;
}

TEST_F(OvriAsciiFileAccessorTest, Read_TakesTheStatementNearestTheEnd)
{
    const std::string other = "dataStructure -fmt \"raw\" -as \"name=Weight:double=Other\";\n";
    mFile.setBytes(kHeader + kHost + other + kWeight + applying("1", "Body") + applying("2", "Body") + kTrailer);
    for (const bool ascending : {true, false})
    {
        // Memory freed last is used first: whichever of the two structures has the lower address, it is not that.
        std::set<Structure*> freed;
        for (int i = 0; i < 6; ++i)
            freed.insert(new Structure("Weight"));
        const std::vector<Structure*> order = ascending ? std::vector<Structure*>(freed.begin(), freed.end())
                                                        : std::vector<Structure*>(freed.rbegin(), freed.rend());
        for (const Structure* structure : order)
            delete structure;
        const auto accessor = readScene(mFile.name());
        EXPECT_EQ(weightOf(*accessor, "Body"), "2");
        ASSERT_EQ(accessor->structures().size(), 1U);
        EXPECT_EQ(**accessor->structures().begin(), *valueStructure("Weight"));
    }
}

TEST_F(OvriAsciiFileAccessorTest, Read_KnowsEveryFormOfAName)
{
    std::string unindented = applying("7", "seven") + applying("10", "ten words");
    unindented.erase(unindented.find('\t'), 2);
    unindented.erase(unindented.find('\t'), 2);
    mFile.setBytes(kHeader + kHost + kWeight + unindented + applying("11", "\"eleven") + applying("1", "select1") +
                   applying("2", "\"two words\"") + applying("3", "-scn") + applying("4", "\"-scn\"") +
                   applying("5", "  setAttr ") + applying("6", "\"six\" more") + applying("8", "//eight") +
                   applying("9", "// End of nine") + "// a comment;\n" + kTrailer);
    const auto accessor = readScene(mFile.name());
    EXPECT_EQ(accessor->associations().size(), 11U);
    EXPECT_EQ(weightOf(*accessor, "ten words"), "10");
    EXPECT_EQ(weightOf(*accessor, "\"eleven"), "11");
    EXPECT_EQ(weightOf(*accessor, "seven"), "7");
    EXPECT_EQ(weightOf(*accessor, "select1"), "1");
    EXPECT_EQ(weightOf(*accessor, "two words"), "2");
    EXPECT_EQ(weightOf(*accessor, ""), "3");
    EXPECT_EQ(weightOf(*accessor, "-scn"), "4");
    EXPECT_EQ(weightOf(*accessor, "setAttr "), "5");
    EXPECT_EQ(weightOf(*accessor, "six"), "6");
    EXPECT_EQ(weightOf(*accessor, "//eight"), "8");
    EXPECT_EQ(weightOf(*accessor, "// End of nine"), "9");
}

TEST_F(OvriAsciiFileAccessorTest, Read_JoinsStatementsThatAreSpreadOverLines)
{
    std::string bytes = kHeader + kHost + kWeight + applying("1", "Body") + kTrailer;
    const struct
    {
        const char* joined;
        const char* spread;
    } cases[] = {
        {" -fmt", "\t\n-fmt"},      {"dataStructure\t", "dataStructure"},
        {" \"raw\"", " \n\"raw\""}, {" -as ", "\n\n\r\n -as\n\t"},
        {"\";", "\"\n ;"},          {"\n\t\tBody", "\n\n\tBody"},
    };
    for (const auto& [joined, spread] : cases)
    {
        SCOPED_TRACE(spread);
        bytes.replace(bytes.find(joined, kHeader.size() + kHost.size()), std::string(joined).size(), spread);
        EXPECT_EQ(rewritten(bytes), kHeader + kHost + kWeight + applying("1", "Body") + kTrailer);
    }
}

TEST_F(OvriAsciiFileAccessorTest, Read_EndsAtTheLastHostStatement)
{
    for (const char* command : {"connectAttr", "createNode", "setAttr", "relationship", "select"})
    {
        SCOPED_TRACE(command);
        mFile.setBytes(kHeader + kWeight + applying("1", "Hidden") + command + " -x;\n" + kWeight +
                       applying("2", "Body") + kTrailer);
        const auto accessor = readScene(mFile.name());
        EXPECT_EQ(accessor->associations().size(), 1U);
        EXPECT_EQ(weightOf(*accessor, "Body"), "2");
    }
}

TEST_F(OvriAsciiFileAccessorTest, Read_FiltersByName)
{
    mFile.setBytes(kHeader + kHost + kWeight + applying("1", "Body") + applying("2", "Head") + applying("3", "Body") +
                   kTrailer);
    const std::set<std::string> structures = {"Weight"};
    const std::set<std::string> names = {"Body", "Absent"};
    OvriAsciiFileAccessor accessor;
    std::string errors;
    ASSERT_TRUE(accessor.read(mFile.name(), &structures, &names, errors)) << errors;
    EXPECT_EQ(accessor.associations().size(), 1U);
    EXPECT_EQ(weightOf(accessor, "Body"), "3");

    accessor.clear();
    const std::set<std::string> none;
    EXPECT_TRUE(accessor.read(mFile.name(), &structures, &none, errors)) << errors;
    EXPECT_TRUE(accessor.associations().empty());
    accessor.clear();
    EXPECT_FALSE(accessor.read(mFile.name(), &none, &names, errors)) << "the stream's structure was left out";

    EXPECT_TRUE(accessor.performRead(&structures, &names, errors)) << "of the same file";
    EXPECT_EQ(weightOf(accessor, "Body"), "3");
    EXPECT_TRUE(Structure::structureByName("Weight")) << "read() alone leaves the registry as it was";
    EXPECT_FALSE(OvriBinaryFileAccessor().performRead(nullptr, nullptr, errors)) << "it has no file";
    accessor.clear();
    Structure::deleteAllStructures();
}

TEST_F(OvriAsciiFileAccessorTest, Write_KeepsEveryLineThatIsNoMetadata)
{
    const std::string odd =
        "// a comment;\ndataStructures;\napplyMetadata;\nfileInfo \"key\" \"value\";\n\n\tleft over;\n";
    const struct
    {
        std::string before;
        std::string after;
    } cases[] = {
        // Metadata is rewritten in its place; what stood between goes ahead of it.
        {kWeight + applying("1", "Body") + kTrailer, kWeight + applying("1", "Body") + kTrailer},
        {applying("1", "Body") + odd + kWeight + odd + kTrailer,
         odd + odd + kWeight + applying("1", "Body") + kTrailer},
        {odd + kTrailer + "last words", odd + kTrailer + "last words"},
        // Metadata below the trailer line would win over what is written: it moves up.
        {kWeight + kTrailer + applying("1", "Body") + "last words\n",
         kWeight + applying("1", "Body") + kTrailer + "last words\n"},
        {"// End of a part\n" + kWeight + kTrailer, "// End of a part\n" + kWeight + kTrailer},
        {odd + kTrailer + odd + kWeight + applying("1", "Body"),
         odd + kWeight + applying("1", "Body") + kTrailer + odd},
        {kTrailer + kWeight.substr(0, kWeight.size() - 1), kWeight + kTrailer},
        // Of two statements for one name the one that was read stays.
        {kWeight + applying("1", "Body") + kWeight + applying("2", "Body") + kTrailer,
         kWeight + applying("2", "Body") + kTrailer},
        {kWeight + applying("1", "-scn") + applying("2", "zoo") + " \t// End of it;\n",
         kWeight + applying("2", "zoo") + applying("1", "-scn") + " \t// End of it;\n"},
    };
    for (const auto& [before, after] : cases)
    {
        SCOPED_TRACE(before);
        EXPECT_EQ(rewritten(kHeader + kHost + before), kHeader + kHost + after);
        EXPECT_EQ(rewritten(kHeader + kHost + after), kHeader + kHost + after) << "twice as once";
    }
}

TEST_F(OvriAsciiFileAccessorTest, Write_NeedsATrailerAndWholeStatements)
{
    const struct
    {
        std::string bytes;
        const char* errors;
    } cases[] = {
        {kHeader + kHost, "Could not find trailer prefix."},
        {kHeader + kHost + "x// End of\n", "Could not find trailer prefix."},
        {kHeader + kTrailer + kHost, "Could not find trailer prefix."},
        {kHeader + kHost + "applyMetadata -fmt \"raw\" -v \"\n\t\tBody\n" + kTrailer,
         "Failed reading line while searching metadata end."},
        {kHeader + kHost + "dataStructure -fmt \"raw\" -as \"x\"\nfileInfo \"y\";\n" + kTrailer,
         "Failed reading line while searching metadata end."},
        {kHeader + kTrailer + "dataStructure -fmt \"raw\" -as \"x\";\r",
         "Failed reading line while searching metadata end."},
        {kHeader + kHost + applying("1", "// End of it"), "Failed reading line while searching metadata end."},
        {kHeader + kHost + "dataStructure -fmt \"raw\" -as \"x\"\n\t// y;\n" + kTrailer,
         "Failed reading line while searching metadata end."},
    };
    for (const auto& [bytes, message] : cases)
    {
        SCOPED_TRACE(bytes);
        mFile.setBytes(bytes);
        OvriAsciiFileAccessor accessor;
        std::string errors;
        accessor.read(mFile.name(), errors);
        errors.clear();
        EXPECT_FALSE(accessor.write(errors));
        EXPECT_EQ(errors, message);
        EXPECT_EQ(mFile.bytes(), bytes);
    }
    std::string errors;
    OvriAsciiFileAccessor accessor;
    accessor.read("/nowhere/scene.oa", errors);
    errors.clear();
    EXPECT_FALSE(accessor.write(errors));
    EXPECT_EQ(errors, "Could not open /nowhere/scene.oa for writing.");
}

TEST_F(OvriAsciiFileAccessorTest, EveryText_SurvivesAWriteAndARead)
{
    std::string everything = "plain \"quoted\" back\\slash \\n end \xC3\xB6 \xE6\x97\xA5 \xFF";
    for (char c = 1; c < 32; ++c)
        everything += c;
    everything += '\x7F';
    const Ref<Structure> label = Structure::make("Label", {{Member::kString, 1, "Text"}});
    mFile.setBytes(kHeader + kHost + kTrailer);
    ASSERT_EQ(attach(mFile.name(), "Body", associationsOf("vertex", "labels", *label, 0, everything)), "");
    EXPECT_EQ(valueAt(*readScene(mFile.name()), "Body", "vertex", "labels", 0), everything);
    const std::string bytes = mFile.bytes();
    EXPECT_NE(bytes.find("\\001\\002\\003\\004\\005\\006\\a\\b\\t\\\\n\\v\\f\\r\\016"), std::string::npos) << bytes;
    EXPECT_NE(bytes.find("\\037\\177\\\""), std::string::npos) << bytes;
}

TEST_F(OvriAsciiFileAccessorTest, Read_UndoesEscapesAndKeepsUnknownOnes)
{
    const std::string label = "dataStructure -fmt \"raw\" -as \"name=Weight:string=Text\";\n";
    // After the escapes of the statement come those of the quoted string inside it, which knows none of these.
    mFile.setBytes(kHeader + kHost + label + applying(R"(\"\101\7\400\17\8\q\")", "Body") + kTrailer);
    EXPECT_EQ(weightOf(*readScene(mFile.name()), "Body"), R"(A\7\400\17\8\q)");
}

TEST_F(OvriAsciiFileAccessorTest, Read_StepsOverBytesThatAreNoCharacters)
{
    const std::string begin = kHeader + kHost + "applyMetadata -fmt \"raw\" -v \"endAssociations\\n";
    const std::string end = "\" \n\t\tBody;\n" + kTrailer;
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_TRUE(std::setlocale(LC_ALL, "C.UTF-8"));
    EXPECT_EQ(readErrors(begin + end), "");
    for (const std::string& odd : {kZero, kZero + "\\n", std::string("\xC3"), std::string("\xC3\\n\xFF\xE6\x97")})
        readErrors(begin + odd + end); // comes to an end
    std::setlocale(LC_ALL, before.c_str());
}

TEST_F(OvriAsciiFileAccessorTest, ABackslashInsideALongerCharacter_IsNone)
{
    const ScratchLocale locale("GBK");
    if (!locale.isSet())
        GTEST_SKIP() << "localedef cannot make a locale here";
    const Ref<Structure> weight = valueStructure("Weight");
    for (std::size_t before = 0; before < 64; ++before) // across the end of a block wherever that is
    {
        // An index, which the stream's text does not escape.
        const std::string name = std::string(before, 'x') + "\x81\x5C\x81\x5C";
        mFile.setBytes(kHeader + kHost + kTrailer);
        const auto weights = associationsOf("vertex", "weights", *weight, IndexString(name), "1");
        ASSERT_EQ(attach(mFile.name(), "Body", weights), "");
        EXPECT_NE(mFile.bytes().find("\\n" + name + "\\n"), std::string::npos) << mFile.bytes();
        EXPECT_EQ(valueAt(*readScene(mFile.name()), "Body", "vertex", "weights", IndexString(name)), "1");
    }
}

TEST_F(OvriAsciiFileAccessorTest, Write_LeavesOutEmptyAssociationsWhateverTheirName)
{
    mFile.setBytes(kHeader + kHost + kTrailer);
    const auto accessor = readScene(mFile.name());
    accessor->associations()["a;b"];
    accessor->associations()[""];
    std::string errors;
    EXPECT_TRUE(accessor->write(errors)) << errors;
    EXPECT_EQ(mFile.bytes(), kHeader + kHost + kTrailer);
}

TEST_F(OvriAsciiFileAccessorTest, AFileCutAnywhere_IsReadOrRefused)
{
    const std::string whole =
        kHeader + kHost + kWeight + applying("1", "Body") + "// between\n" + applying("2", "-scn") + kTrailer;
    for (std::string::size_type length = 0; length < whole.size(); ++length)
    {
        SCOPED_TRACE(length);
        const std::string cut = whole.substr(0, length);
        readErrors(cut);
        OvriAsciiFileAccessor accessor;
        std::string errors;
        accessor.read(mFile.name(), errors);
        if (accessor.write(errors))
            EXPECT_EQ(readErrors(mFile.bytes()), "");
        else
            EXPECT_EQ(mFile.bytes(), cut);
    }
}

TEST_F(OvriAsciiFileAccessorTest, ASceneOfTwoGigabytes_IsReadAtItsHeadAndTailOnly)
{
    {
        std::ofstream out(mFile.name(), std::ios::binary);
        out << kHeader << kHost;
        out.seekp(2LL << 30);
        out << "\n" << kHost << kWeight << applying("1", "Body") << kTrailer;
        ASSERT_TRUE(out.flush());
    }
    const std::uint64_t atStart = bytesReadByProcess();
    const auto accessor = readScene(mFile.name());
    std::string errors;
    ASSERT_TRUE(accessor->write(errors)) << errors;
    const std::uint64_t total = bytesReadByProcess() - atStart;
    RecordProperty("bytesRead", std::to_string(total));
    EXPECT_LT(total, 65536U);
    EXPECT_EQ(weightOf(*accessor, "Body"), "1");
}

TEST_F(OvriAsciiFileAccessorTest, CarriageReturns_StayAtTheEndsOfTheHostsLinesWhereverBlocksEnd)
{
    // Every alignment of the statements to the first block, of 4096 bytes, that is read backwards.
    const std::string host = "//Ovri ASCII 2014 scene\r\nselect -ne :a;\r\n";
    const std::string metadata = kWeight + applying("1", "Body");
    std::string inFile = metadata;
    for (std::size_t i = 0; (i = inFile.find('\n', i)) != std::string::npos; i += 2)
        inFile.insert(i, "\r");
    for (std::size_t size = 4096 - inFile.size(); size <= 4096; ++size)
    {
        SCOPED_TRACE(size);
        const std::string rest = "// End of it\r\n//" + std::string(size - 18, 'x') + "\r\n";
        EXPECT_EQ(rewritten(host + inFile + rest), host + metadata + rest);
    }
}

TEST_F(OvriAsciiFileAccessorTest, AStatement_MayBeLongerThanWhatIsHeldOfTheFile)
{
    const std::string filling(130 << 20, 'x');
    std::string large = applying("2", "Large");
    large.insert(large.find(" \n\t\t"), "\n\t" + filling + "\n\t\"");
    mFile.setBytes(kHeader + kHost + kWeight + applying("1", "Body") + large + kTrailer);
    const std::set<std::string> names = {"Body"};
    OvriAsciiFileAccessor accessor;
    std::string errors;
    ASSERT_TRUE(accessor.read(mFile.name(), nullptr, &names, errors)) << errors;
    EXPECT_EQ(weightOf(accessor, "Body"), "1");
    accessor.clear();
}

TEST_F(OvriAsciiFileAccessorTest, RichScenesOfBothKinds_AreExactToTheByte)
{
    for (const auto& [ending, before, after] : kRichScenes)
    {
        SCOPED_TRACE(ending);
        const ScratchFile file(ending);
        file.setBytes(before);
        const auto accessor = readScene(file.name());
        EXPECT_EQ(accessor->structures().size(), 3U);
        EXPECT_EQ(accessor->associations().size(), 3U);
        EXPECT_EQ(valueAt(*accessor, "body", "vertex", "labels", IndexString("日本")), "ひざ");
        EXPECT_EQ(valueAt(*accessor, "", "info", "notes", IndexString("author")), "Zoë \\ \"Z\"\nand friends");

        std::string errors;
        EXPECT_TRUE(accessor->write(errors)) << errors;
        EXPECT_EQ(file.bytes(), before);
        edit(*accessor);
        EXPECT_TRUE(accessor->write(errors)) << errors;
        EXPECT_EQ(file.bytes(), after);
    }
}
} // namespace
} // namespace vumo::test
