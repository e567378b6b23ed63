#pragma once

#include "core/Address.h"
#include "core/Command.h"
#include "core/Failure.h"
#include "core/Output.h"
#include "core/Saving.h"

#include <functional>
#include <memory>
#include <ostream>
#include <ratio>
#include <string>
#include <vector>

/// One run of the tool: what its command line says, and where its data and its words go.
///
/// A command is a function that takes the session, adds itself with addCommand() and what else can be said about it,
/// and leaves its work with setWork(). The options that commands share are defined and kept here, once.
class Session
{
public:
    /// NODE, CHANNEL, STREAM, INDEX and MEMBER.
    static const std::vector<Word> kAddress;

    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    /// Adds a command, with the options that all of them have.
    Command addCommand(const std::string& name, const std::string& description);

    /// FILE..., and the options about many files; files() has them.
    void addFiles(Command& command, const char* description = "the scene files");

    /// The same with patterns for what counts of the scenes; selection() has them.
    void addSelectedFiles(Command& command);

    /// FILE, then words of which that many must be given, and the options about many files; with --files-from the
    /// command line leaves out FILE. words() has what comes after it.
    void addFileAndWords(Command& command, const std::vector<Word>& words, std::size_t required);

    void addLockWait(Command& command);
    void addSelection(Command& command);
    void addJson(Command& command);
    void addSaving(Command& command);

    /// Chooses what the command does once the command line is read. It returns kDone or kNo, or throws a `Failure`.
    void setWork(Command& command, std::function<eExitCode()> work);

    /// Reads the command line and does what it says; returns the exit code.
    int run(int argc, char** argv);

    /// The files to work on, by their names. Reads the list of them.
    std::vector<std::string> files() const;

    /// All of a file that a command takes its work from, or of standard input for "-"; refused when the names of files
    /// stand there.
    std::string readInput(const std::string& name) const;

    /// Whether there is a list of files, or several of them.
    bool isBatch() const;
    bool isFailFast() const { return mIsFailFast; }

    std::vector<std::string> words() const;
    Address address() const { return Address(words()); }
    const Selection& selection() const { return mSelection; }
    const Saving& saving() const { return mSaving; }
    bool isJson() const { return mIsJson; }
    void setJson(bool isJson) { mIsJson = isJson; }
    bool isQuiet() const { return mIsQuiet; }

    /// Whether names that are read and values that are written end with a zero byte.
    bool endsWithZero() const { return mEndsWithZero; }
    /// The byte that ends each line of data; a command may choose another one.
    char lineEnd() const { return mLineEnd; }
    void setLineEnd(char lineEnd) { mLineEnd = lineEnd; }

    /// How long a lock of somebody else is waited for, in milliseconds.
    unsigned int lockWait() const { return static_cast<unsigned int>(mLockWait * std::milli::den); }

    /// Standard output, for data. Whether somebody still reads it.
    std::ostream& out() { return mOut; }
    bool hasReader() const { return mBuffer.error() == 0; }

    /// Lets people see what there is so far, unless it is JSON, before what comes on standard error.
    void flushForPeople();

    /// Writes words for people to standard error, on lines of their own, unless they are not wanted.
    void say(const std::string& text) const;

private:
    void addBatch(Command& command);
    void loadPlugins() const;
    int finish(eExitCode code);

    std::unique_ptr<CLI::App> mCommandLine;
    std::function<eExitCode()> mWork;

    const CLI::App* mCommand = nullptr; // the one that was given
    Selection mSelection;
    Saving mSaving;
    std::string mFilesFrom;
    std::vector<std::string> mPlugins;
    double mLockWait = 0; // in seconds
    char mLineEnd = '\n';
    bool mEndsWithZero = false;
    bool mIsFailFast = false;
    bool mIsBatch = false;
    bool mIsJson = false;
    bool mIsQuiet = false;

    const bool mIsRead = StandardOutput::isTerminal() || StandardOutput::isSharedWithErrors(); // by people
    StandardOutput mBuffer;
    std::ostream mOut{&mBuffer};
};
