#include "tests/support/Golden.h"
#include "tests/support/ScratchFile.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace vumo::test
{
namespace
{
struct Outcome
{
    int exitCode = -1;
    std::string out; ///< standard output and standard error, in the order of writing
};

std::string inShellQuotes(const std::string& word)
{
    std::string result = "'";
    for (const char character : word)
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return result + "'";
}

/// Runs a program with these arguments.
Outcome run(const std::string& program, const std::vector<std::string>& arguments)
{
    std::string command = inShellQuotes(program);
    for (const std::string& argument : arguments)
        command += " " + inShellQuotes(argument);
    Outcome outcome;
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), pipe))
        outcome.out.append(part.data(), length);
    outcome.exitCode = WEXITSTATUS(pclose(pipe));
    return outcome;
}

/// Runs the tool held to the permissions of files, which the administrator is not as a rule.
Outcome runWithPermissions(std::vector<std::string> arguments)
{
    if (geteuid() != 0)
        return run(VUMO_TOOL_PATH, arguments);
    const std::string rights = "-dac_override,-dac_read_search";
    arguments.insert(arguments.begin(), {"--inh-caps=" + rights, "--bounding-set=" + rights, VUMO_TOOL_PATH});
    return run("setpriv", arguments);
}

/// The words of a command, which commas separate.
std::vector<std::string> wordsOf(const std::string& command)
{
    const std::string separator = ", ";
    std::vector<std::string> words;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = command.find(separator, begin)) != std::string::npos; begin = end + 2)
        words.push_back(command.substr(begin, end - begin));
    words.push_back(command.substr(begin));
    return words;
}

/// Runs the tool on golden scenes of both kinds, which hold the same metadata.
class VumoTest : public testing::Test
{
protected:
    VumoTest()
    {
        mAscii.setBytes(goldenText("rich.oa"));
        mBinary.setBytes(goldenBytes("rich.ob.hex"));
    }

    /// Runs a command on both, for which it leaves out the file; the outcome must be the same, but for their names.
    Outcome onBoth(const std::string& command) const
    {
        const Outcome ascii = on(mAscii, command);
        const Outcome binary = on(mBinary, command);
        EXPECT_EQ(ascii.out, binary.out);
        EXPECT_EQ(ascii.exitCode, binary.exitCode);
        return ascii;
    }

    ScratchFile mAscii{".oa"};
    ScratchFile mBinary{".ob"};

private:
    static Outcome on(const ScratchFile& file, const std::string& command)
    {
        std::vector<std::string> words = wordsOf(command);
        words.insert(words.begin() + 1, file.name());
        Outcome outcome = run(VUMO_TOOL_PATH, words);
        const std::string::size_type name = outcome.out.find(file.name());
        if (name != std::string::npos)
            outcome.out.replace(name, file.name().size(), "FILE");
        return outcome;
    }
};

TEST_F(VumoTest, Show_ListsStructuresThenChannelsAndStreams)
{
    const Outcome outcome = onBoth("show");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.substr(outcome.out.find("  \"Label\"")),
              "  \"Label\"\n"
              "    string  text\n"
              "  \"Weight\"\n"
              "    float  weight\n"
              "scene\n"
              "  channel \"info\"\n"
              "    stream \"notes\"  structure \"Label\"  index string  1 element\n"
              "node \"body\"\n"
              "  channel \"edge\"\n"
              "    stream \"creases\"  structure \"Weight\"  index pair  3 elements\n"
              "  channel \"vertex\"\n"
              "    stream \"all\"     structure \"AllTypes\"  index numeric  2 elements\n"
              "    stream \"labels\"  structure \"Label\"     index string   3 elements\n"
              "node \"head\"\n"
              "  channel \"face\"\n"
              "    stream \"marks\"  structure \"Label\"  index numeric  1 element\n");
    EXPECT_NE(outcome.out.find("    double[2]  pair\n"), std::string::npos) << outcome.out;
}

TEST_F(VumoTest, Show_AlignsValuesInColumns)
{
    const Outcome outcome = onBoth("show, --values");
    EXPECT_NE(outcome.out.find("      index         text\n"
                               "      \"elbow left\"  \"Ellbogen: ö ß\"\n"
                               "      \"knee\"        \"\"\n"
                               "      \"日本\"          \"ひざ\"\n"),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("      0 2    0.75\n"), std::string::npos) << outcome.out;
}

TEST_F(VumoTest, Get_PrintsAStreamOrOneElement)
{
    EXPECT_EQ(onBoth("get, body, edge, creases").out, "index  weight\n0 1    0.5\n0 2    0.75\n3 1    1\n");
    EXPECT_EQ(onBoth("get, body, edge, creases, 3 1").out, "weight  1\n");
    EXPECT_EQ(onBoth("get, , info, notes, author").out, "text  \"Zoë \\\\ \\\"Z\\\"\\nand friends\"\n");
    const Outcome outcome = onBoth("get, body, vertex, all, 7");
    EXPECT_NE(outcome.out.find("texts   \"two\\nlines\" \"  blanks  and\\ttab \"\n"), std::string::npos) << outcome.out;
}

TEST_F(VumoTest, Set_RewritesTheFileInPlace)
{
    const Outcome outcome = onBoth("set, body, edge, creases, 0 2, weight=0.125");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(mAscii.bytes(), goldenText("rich_edited.oa"));
    EXPECT_EQ(mBinary.bytes(), goldenBytes("rich_edited.ob.hex"));
}

TEST_F(VumoTest, Set_TakesWholeMembersAndSingleValues)
{
    const std::string matrix = "16 15 14 13 12 11 10 9 8 7 6 5 4 3 2 1";
    EXPECT_EQ(onBoth("set, body, vertex, all, 0, pair=-1 2.5, origin[2]=.5, matrix=" + matrix +
                     ", texts[1]=  as = it \"stands\", flag=false, i8=-7")
                  .out,
              "");
    const std::string element = onBoth("get, body, vertex, all, 0").out;
    for (const char* line : {"flag    false\n", "pair    -1 2.5\n", "origin  0.25 -2 0.5\n", "i8      -7\n",
                             "texts   \"say \\\"hi\\\"\" \"  as = it \\\"stands\\\"\"\n"})
        EXPECT_NE(element.find(line), std::string::npos) << element;
    EXPECT_NE(element.find("matrix  " + matrix + "\n"), std::string::npos) << element;
}

TEST_F(VumoTest, Digits_AreAllOrSix)
{
    const std::string get = "get, body, edge, creases, 0 2";
    EXPECT_EQ(onBoth("set, body, edge, creases, 0 2, weight=1.2345678").out, "");
    EXPECT_EQ(onBoth(get).out, "weight  1.2345678\n");
    EXPECT_EQ(onBoth(get + ", --digits, six").out, "weight  1.23457\n");
    EXPECT_NE(onBoth("show, --values").out.find("0 2    1.2345678\n"), std::string::npos);
    EXPECT_NE(onBoth("show, --values, --digits, six").out.find("0 2    1.23457\n"), std::string::npos);
    EXPECT_EQ(onBoth("set, body, edge, creases, 0 1, weight=2, --digits=six").out, "");
    EXPECT_EQ(onBoth(get + ", --digits=exact").out, "weight  1.23457\n");
}

TEST_F(VumoTest, ASaveThatFails_IsToldWithWhatTheSystemSays)
{
    const std::string bytes = mAscii.bytes();
    const std::string limit = "ulimit -f " + std::to_string(bytes.size() / 512 + 1) + "; trap '' XFSZ; exec \"$@\"";
    const Outcome outcome = run("sh", {"-c", limit, "sh", VUMO_TOOL_PATH, "set", mAscii.name(), "head", "face", "marks",
                                       "12", "text=" + std::string(800, 'x')});
    EXPECT_EQ(outcome.out, "vumo: " + mAscii.name() + ": Failed to append the file trailer: File too large\n");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(mAscii.bytes(), bytes);
}

TEST_F(VumoTest, Set_AddsElementsOnRequest)
{
    EXPECT_EQ(onBoth("set, --add, head, face, marks, 3, text=chin").out, "");
    EXPECT_EQ(onBoth("get, head, face, marks").out, "index  text\n3      \"chin\"\n12     \"nose\"\n");
}

TEST_F(VumoTest, Mistakes_AreToldAndChangeNothing)
{
    const struct
    {
        const char* command;
        int exitCode;
        std::string message;
    } cases[] = {
        {"get, tail, edge, creases", 1, "no metadata for node \"tail\""},
        {"get, , edge, creases", 1, "scene has no channel \"edge\""},
        {"get, body, edge, x", 1, "channel \"edge\" has no stream \"x\""},
        {"get, body, edge, creases, 7", 1, "\"7\" is not an index of type \"pair\""},
        {"get, body, edge, creases, 7 7", 1, "stream \"creases\" has no element at index \"7 7\""},
        {"set, head, face, marks, 3, text=x", 1, "stream \"marks\" has no element at index \"3\""},
        {"set, body, edge, creases, 0 1, mass=1", 1, "there is no member \"mass\""},
        {"set, body, edge, creases, 0 1, weight[1]=1", 1, "member \"weight\" has no value [1]"},
        {"set, body, edge, creases, 0 1, weight=1x", 1,
         "member \"weight\" takes 1 float value: Float value on or about character 1 is invalid"},
        {"set, body, vertex, all, 0, i8=200", 1,
         "member \"i8\" takes 1 int8 value: Int8 value on or about character 3 is invalid"},
        {"set, body, vertex, all, 0, u64=-1", 1, "member \"u64\" takes 1 uint64 value: \"-1\" is negative"},
        {"get, body, vertex, labels, \x1b[31m", 1, "stream \"labels\" has no element at index \"\\x1b[31m\""},
        {"set, body, vertex, all, 0, pair=1", 1,
         "member \"pair\" takes 2 double values: Double value on or about character 1 is invalid"},
        {"set, body, vertex, all, 0, pair=1 2 3", 1, "member \"pair\" takes 2 double values: \"3\" is left over"},
        {"set, body, vertex, all, 0, flag=TRUE", 1,
         "member \"flag\" takes 1 bool value: Boolean on or about character 4 has invalid value 'TRUE'. Use 't', "
         "'true', '1', 'f', 'false', '0' only."},
        {"set, body, vertex, all, 0, texts=a b", 2, "set the strings of \"texts\" one by one, as MEMBER[i]=VALUE"},
        {"set, body, edge, creases, 0 1, =1", 2, "\"=1\" is not of the form MEMBER=VALUE"},
        {"set, body, edge, creases, 0 1", 2, "MEMBER=VALUE is required\nRun with --help for more information."},
        {"show, --digits, ten", 2, "--digits: ten not in {exact,six}\nRun with --help for more information."},
        {"show, --all", 2, "The following argument was not expected: --all\nRun with --help for more information."},
    };
    for (const auto& [command, exitCode, message] : cases)
    {
        SCOPED_TRACE(command);
        const Outcome outcome = onBoth(command);
        EXPECT_EQ(outcome.exitCode, exitCode);
        EXPECT_EQ(outcome.out, (exitCode == 1 ? "vumo: FILE: " : "vumo: ") + message + "\n");
    }
    EXPECT_EQ(mAscii.bytes(), goldenText("rich.oa"));
    EXPECT_EQ(mBinary.bytes(), goldenBytes("rich.ob.hex"));
}

/// A scene whose node "head" has a format that nobody knows.
std::string withForeignHead(std::string scene)
{
    const std::size_t target = scene.find("\n\t\thead;");
    const std::size_t head = target == std::string::npos ? scene.find(std::string("head\0raw", 8)) + 8 : target;
    scene[scene.rfind("raw", head) + 1] = 'o';
    return scene;
}

TEST_F(VumoTest, MetadataThatCannotBeRead_IsNamedAndKept)
{
    mAscii.setBytes(withForeignHead(goldenText("rich.oa")));
    mBinary.setBytes(withForeignHead(goldenBytes("rich.ob.hex")));
    const std::string reason = ", cannot be read: Could not find serializer for format row\n";
    for (const ScratchFile* const file : {&mAscii, &mBinary})
    {
        const std::string shown = run(VUMO_TOOL_PATH, {"show", file->name()}).out;
        EXPECT_NE(shown.find("\"edge\""), std::string::npos) << shown;
        EXPECT_NE(shown.find("\nnode \"head\", in the format \"row\", from byte "), std::string::npos) << shown;
        EXPECT_EQ(shown.substr(shown.size() - reason.size()), reason);
        const Outcome got = run(VUMO_TOOL_PATH, {"get", file->name(), "head", "face", "marks"});
        EXPECT_EQ(got.exitCode, 1);
        EXPECT_EQ(got.out.find("vumo: " + file->name() + ": node \"head\", in the format \"row\""), 0U) << got.out;
    }
    EXPECT_EQ(onBoth("set, body, edge, creases, 0 2, weight=0.125").out, "");
    EXPECT_EQ(mAscii.bytes(), withForeignHead(goldenText("rich_edited.oa")));
    EXPECT_EQ(mBinary.bytes(), withForeignHead(goldenBytes("rich_edited.ob.hex")));
}

TEST_F(VumoTest, FilesThatCannotBeUsed_AreNamedOnceWithWhatToDo)
{
    const ScratchFolder folder;
    for (const char* name : {"scene", "secret.ob", "fixed.oa"})
        std::ofstream(folder / name) << goldenText("rich.oa");
    std::ofstream(folder / "odd.oa") << "hello";
    std::ofstream(folder / "bare.oa") << "//Ovri ASCII 2014 scene\nselect -ne :a;\n// End of bare.oa\n";
    ASSERT_EQ(mkfifo((folder / "pipe.ob").c_str(), 0600), 0);
    ASSERT_EQ(chmod((folder / "secret.ob").c_str(), 0), 0);
    ASSERT_EQ(chmod((folder / "fixed.oa").c_str(), 0400), 0);
    const std::string noMetadata =
        "there is no metadata yet; a program attaches it with the library, as examples/write_scene.cpp does\n";
    const std::vector<std::string> get = {"body", "edge", "creases"};
    const std::vector<std::string> set = {"body", "edge", "creases", "0 1", "weight=1"};

    const struct
    {
        const char* command;
        std::string file;
        std::vector<std::string> arguments;
        std::string message;
    } cases[] = {
        {"show", "", {}, "this is a folder; name a scene file in it\n"},
        {"show", "pipe.ob", {}, "this is not a regular file; copy what it delivers to one\n"},
        {"show",
         "scene",
         {},
         "its name is not that of a scene; give it the ending .oa if it is an ASCII scene, .ob if it is binary\n"},
        {"show", "absent.ob", {}, "No such file or directory\n"},
        {"show", "\x1b[31m.ob", {}, "No such file or directory\n"},
        {"show", "scene/a.oa", {}, "Not a directory\n"},
        {"show", "secret.ob", {}, "Permission denied; ask its owner for access\n"},
        {"set", "fixed.oa", set, "Permission denied; ask its owner for access\n"},
        {"show", "odd.oa", {}, "Header too small.\n"},
        {"get", "bare.oa", get, noMetadata},
        {"set", "bare.oa", set, noMetadata},
    };
    for (const auto& [command, file, arguments, message] : cases)
    {
        SCOPED_TRACE(command + (" " + file));
        std::vector<std::string> words = {command, folder / file};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const Outcome outcome = runWithPermissions(words);
        const std::string printed = file[0] == '\x1b' ? "\\x1b[31m.ob" : file;
        EXPECT_EQ(outcome.out, "vumo: " + folder / printed + ": " + message);
        EXPECT_EQ(outcome.exitCode, 1);
    }
    EXPECT_EQ(run(VUMO_TOOL_PATH, {"show", folder / "bare.oa"}).out, noMetadata);
}

TEST_F(VumoTest, Commands_AreNeeded)
{
    const Outcome outcome = run(VUMO_TOOL_PATH, {"list", "a.ob"});
    EXPECT_EQ(outcome.out, "vumo: there is no command \"list\"; vumo --help lists those that there are\n");
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(run(VUMO_TOOL_PATH, {}).exitCode, 2);
    EXPECT_EQ(run(VUMO_TOOL_PATH, {"--help"}).exitCode, 0);
    EXPECT_EQ(run(VUMO_TOOL_PATH, {"--version"}).out.substr(0, 5), "vumo ");
}

TEST_F(VumoTest, TheExampleScenesOfBothKinds_AreTheSamplesAndShowTheSame)
{
    std::vector<std::string> shown;
    for (const std::string ending : {".oa", ".ob"})
    {
        const ScratchFile file(ending);
        EXPECT_EQ(run(VUMO_SCENE_EXAMPLE_PATH, {file.name()}).exitCode, 0);
        EXPECT_EQ(file.bytes(), goldenText("../../examples/scenes/example" + ending));
        shown.push_back(run(VUMO_TOOL_PATH, {"show", "--values", file.name()}).out);
    }
    EXPECT_NE(shown[0].find("node \"Body\"\n"), std::string::npos) << shown[0];
    EXPECT_EQ(shown[1], shown[0]);
}

TEST_F(VumoTest, TheExampleOfAnObject_ShowsWhatSharingMeans)
{
    const Outcome outcome = run(VUMO_ATTACH_EXAMPLE_PATH, {});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.substr(0, outcome.out.find("Footprint")), "body: 0.75, copy: 0.75\nbody: 0.75, copy: 1\n");
}
} // namespace
} // namespace vumo::test
