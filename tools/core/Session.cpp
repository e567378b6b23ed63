#include "core/Session.h"

#include "core/HelpPages.h"
#include "core/Nearest.h"
#include "core/OtherProgram.h"
#include "core/Text.h"

#include <CLI/CLI.hpp>
#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

const std::vector<Word> Session::kAddress = {{"NODE", "the node's name; \"\" for the scene itself"},
                                             {"CHANNEL", "the channel's name"},
                                             {"STREAM", "the stream's name"},
                                             {"INDEX", "the element's index"},
                                             {"MEMBER", "the member's name; MEMBER[i] for one of its values"}};

namespace
{
constexpr const char* kFooter =
    "Exit codes: 0 done; 1 the answer is no: absent, different, findings; 2 wrong usage; 3 input missing, unreadable "
    "or "
    "malformed; 4 write refused or failed, the file is as it was; 5 locked, or changed by somebody else; 6 an "
    "interrupted save that could not be repaired; 7 some of the files failed.\n"
    "Any other command is a program vumo-COMMAND beside this one or in PATH; the package for Python has catalog and "
    "campaign.";

const std::vector<std::string> kCommandsOfPython = {"catalog", "campaign"};

/// All of a file, or of standard input for "-".
std::string readAll(const std::string& name)
{
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored)) // it can be opened, and not be read
        throw Failure(kBadInput, escaped(name) + ": this is a folder");
    std::ifstream file;
    if (name != "-")
        file.open(name, std::ios::binary);
    if (!file)
        throw Failure(kBadInput, escaped(name) + ": " + std::strerror(errno));
    return {std::istreambuf_iterator<char>(name == "-" ? std::cin : file), std::istreambuf_iterator<char>()};
}

/// The parts of the text that end with `end`, without empty ones.
std::vector<std::string> split(const std::string& text, char end)
{
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t at = std::min(text.find(end, begin), text.size());
        if (at > begin)
            parts.push_back(text.substr(begin, at - begin));
        begin = at + 1;
    }
    return parts;
}

/// Hands a word that is no command of the tool to the program that knows it. The parser itself would only miss a
/// command, without a word about what stands in its place.
void leaveUnknownCommand(const CLI::App& commandLine, const std::string& word, char** arguments)
{
    std::vector<std::string> names;
    for (const CLI::App* const command : commandLine.get_subcommands(nullptr))
        names.push_back(command->get_name());
    if (std::find(names.begin(), names.end(), word) != names.end())
        return;
    runOtherProgram(word, arguments);
    names.insert(names.end(), kCommandsOfPython.begin(), kCommandsOfPython.end());
    if (std::find(names.begin(), names.end(), word) != names.end())
        throw Failure(kWrongUsage, "the command " + inQuotes(word) +
                                       " comes with the package for Python, which is not installed beside the tool");
    throw Failure(kWrongUsage, "there is no command " + inQuotes(word) + didYouMean(word, names) +
                                   (didYouMean(word, names).empty() ? "; " : " ") + "vumo --help lists them");
}

/// The words of the command line, from the last one on, as the parser takes them. A "--" after the words of an option
/// that takes several ends no more than those for it, so a second one is added, which ends all options.
std::vector<std::string> parserWords(const CLI::App& commandLine, int argc, char** argv)
{
    std::vector<std::string> words(std::make_reverse_iterator(argv + argc), std::make_reverse_iterator(argv + 1));
    const auto end = std::find(words.rbegin(), words.rend(), "--").base();
    const auto last = std::find_if(end, words.end(), [](const std::string& word) { return word.rfind('-', 0) == 0; });
    if (end == words.begin() || last == words.end() || words.back()[0] == '-')
        return words;
    const CLI::App* const command = commandLine.get_subcommand(words.back());
    const CLI::Option* const option = command->get_option_no_throw(last->substr(0, last->find('=')));
    if (option && option->get_items_expected_max() > 1)
        words.insert(end, "--");
    return words;
}

/// A file may have a name that is taken for an option.
std::string dashHint(char** arguments)
{
    for (; *arguments; ++arguments)
    {
        if (**arguments == '-' && access(*arguments, F_OK) == 0)
            return "there is a file " + inQuotes(*arguments) + "; names that begin with \"-\" stand after \"--\"";
    }
    return "";
}
} // namespace

Session::Session()
    : mCommandLine(
          std::make_unique<CLI::App>("Reads and edits the metadata in scene files, without loading the scene.", "vumo"))
{
}

Session::~Session() = default;

Command Session::addCommand(const std::string& name, const std::string& description)
{
    Command command(*mCommandLine->add_subcommand(name, description));
    command.addList("--plugin", mPlugins, "FILE.so", "load index types, formats or kinds of files");
    command.addFlag("-q,--quiet", mIsQuiet, "no words on standard error, but for the names of files that failed");
    return command;
}

void Session::addFiles(Command& command, const char* description)
{
    command.addWord({"FILE...", description}, true);
    addBatch(command);
}

void Session::addSelectedFiles(Command& command)
{
    addFiles(command);
    addSelection(command);
}

void Session::addFileAndWords(Command& command, const std::vector<Word>& words, std::size_t required)
{
    command.addWord({"FILE", "the scene file; left out after --files-from"}, true);
    for (std::size_t i = 0; i < words.size(); ++i)
        command.addWord(words[i], i < required);
    addBatch(command);
}

void Session::addBatch(Command& command)
{
    command.addOptionForWord("--files-from", mFilesFrom, "FILE",
                             "work on the files whose names this file has, one a line; \"-\" for standard input");
    command.addFlag("-0,--null", mEndsWithZero, "such names, and values that are printed, end with a zero byte");
    command.addFlag("--fail-fast", mIsFailFast,
                    "stop at the first file that fails, and name those that were not tried");
    command.addFlag("-H,--batch", mIsBatch, "treat one file as several are: its name leads each line");
    addLockWait(command);
}

void Session::addLockWait(Command& command)
{
    constexpr double kMostSeconds = 4.0e6; // in milliseconds they go into 32 bits
    command.addNumber("--lock-wait", mLockWait, 0, kMostSeconds, "SECONDS",
                      "wait so long for others who write to a file");
}

void Session::addSelection(Command& command)
{
    command.addList("--node", mSelection.nodes, "PATTERN", "only nodes of such names, as fnmatch knows patterns");
    command.addList("--channel", mSelection.channels, "PATTERN", "only channels of such names");
    command.addList("--stream", mSelection.streams, "PATTERN", "only streams of such names");
}

void Session::addJson(Command& command)
{
    command.addFlag("--json", mIsJson, "print one JSON document");
}

void Session::addSaving(Command& command)
{
    addJson(command);
    command.addFlag("--dry-run", mSaving.isDryRun, "say what the save would cost, and write nothing");
    command.addOption("-o,--output", mSaving.out, "OUT", "leave the file as it is, and write the result to this one");
    command.addOption("--if-tail", mSaving.tail, "CHECKSUM",
                      "fail unless the metadata have this checksum, as scan gives it");
    command.addChoice(
        "--digits", mSaving.digits, {"exact", "six"},
        "save floating-point numbers exactly or with six digits, all those of the nodes that are written");
}

void Session::setWork(Command& command, std::function<eExitCode()> work)
{
    CLI::App& parser = command.parser();
    parser.callback([this, &parser, work = std::move(work)] {
        mCommand = &parser;
        mWork = work;
    });
}

int Session::run(int argc, char** argv)
{
    mCommandLine->require_subcommand(1);
    mCommandLine->set_version_flag("--version", "vumo " VUMO_VERSION);
    mCommandLine
        ->add_option_function<std::string>(
            "--help-as",
            [this](const std::string& form) { throw CLI::CallForVersion(helpAs(*mCommandLine, form), kDone); },
            "print this help, and that of all commands, as a page or a script: man, markdown or bash")
        ->type_name("FORM")
        ->trigger_on_parse();
    mCommandLine->footer(kFooter);
    mCommandLine->failure_message([](const CLI::App* failed, const CLI::Error& error) {
        return "vumo: " + message(CLI::FailureMessage::simple(failed, error));
    });
    try
    {
        if (argc > 1 && argv[1][0] != '-')
            leaveUnknownCommand(*mCommandLine, argv[1], argv + 1);
        std::signal(SIGPIPE, SIG_IGN); // a closed pipe must not end a save in its middle
        mCommandLine->parse(parserWords(*mCommandLine, argc, argv));
        loadPlugins();
        return finish(mWork());
    }
    catch (const CLI::ParseError& error)
    {
        if (error.get_exit_code() != 0)
            say(dashHint(argv));
        if (mCommandLine->exit(error) != 0)
            return kWrongUsage;
        std::cout.flush();
        return std::cout ? kDone : kNotWritten;
    }
    catch (const Failure& failure)
    {
        mIsQuiet = mIsQuiet && failure.code() != kWrongUsage;
        say(failure.what());
        return finish(failure.code());
    }
    catch (const std::exception& error)
    {
        say(error.what());
        return finish(kBadInput);
    }
}

std::vector<std::string> Session::files() const
{
    if (mFilesFrom.empty())
    {
        const CLI::Option* const file = mCommand->get_option("FILE");
        return file->results();
    }
    return split(readAll(mFilesFrom), mEndsWithZero ? '\0' : '\n');
}

std::string Session::readInput(const std::string& name) const
{
    if (name == "-" && mFilesFrom == "-")
        throw Failure(kWrongUsage, "standard input cannot be both the list of files and what is done with them");
    return readAll(name);
}

bool Session::isBatch() const
{
    const CLI::Option* const file = mCommand->get_option_no_throw("FILE"); // diff has A and B
    return mIsBatch || !mFilesFrom.empty() || (file && file->count() > 1);
}

std::vector<std::string> Session::words() const
{
    std::vector<std::string> words;
    for (const CLI::Option* const option : mCommand->get_options())
    {
        if (option->get_positional())
            words.insert(words.end(), option->results().begin(), option->results().end());
    }
    if (mFilesFrom.empty())
        words.erase(words.begin());
    return words;
}

void Session::say(const std::string& text) const
{
    if (!mIsQuiet && !text.empty())
        std::cerr << "vumo: " + message(text) + (text.back() == '\n' ? "" : "\n");
}

void Session::flushForPeople()
{
    if (mIsRead && !mIsJson) // words stand before a document rather than in it
        mOut.flush();
}

void Session::loadPlugins() const
{
    for (const std::string& plugin : mPlugins)
    {
        // A name without a slash would be looked for among the system's libraries.
        const std::string path = plugin.find('/') == std::string::npos ? "./" + plugin : plugin;
        if (!dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) // it stays: what it registers is used to the end
            throw Failure(kBadInput, dlerror());
    }
}

int Session::finish(eExitCode code)
{
    mOut.flush();
    if (mBuffer.error() == 0 || mBuffer.error() == EPIPE)
        return code;
    say(std::string("could not write the output: ") + std::strerror(mBuffer.error()));
    return kNotWritten;
}
