#pragma once

#include <stdexcept>
#include <string>

/// What the tool, or its work on one file, ends with.
enum eExitCode : int
{
    kDone = 0,
    kNo = 1,          ///< the answer is no: absent, different, or there are findings
    kWrongUsage = 2,  ///< the command line is at fault
    kBadInput = 3,    ///< what is to be read is missing, unreadable or malformed
    kNotWritten = 4,  ///< a write was refused or failed; the file is as it was
    kBusy = 5,        ///< the file is locked, or somebody else has changed it
    kNotRestored = 6, ///< an interrupted save was found, and the file could not be restored
    kSomeFailed = 7   ///< of several files
};

/// What keeps a command from its work; the text says what, and what can be done about it.
class Failure : public std::runtime_error
{
public:
    Failure(eExitCode code, const std::string& text) : std::runtime_error(text), mCode(code) {}

    eExitCode code() const { return mCode; }

private:
    eExitCode mCode;
};

/// Wrong usage for one file, such as a value that its member cannot hold. The others of a batch are worked on.
class WrongForFile : public Failure
{
public:
    explicit WrongForFile(const std::string& text) : Failure(kWrongUsage, text) {}
};
