#pragma once

#include "core/JsonObject.h"
#include "core/Session.h"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// One file of a command's work.
struct Job
{
    Session& session;
    std::string file;
    std::ostream& out; ///< for data as text; of several files, each line is led by the file's name and a tabulator
    JsonObject* json;  ///< null unless JSON is asked for: the object that describes this file, for what was found
};

/// What a command does with one file: returns kDone or kNo, or throws a `Failure`.
using FileWork = std::function<eExitCode(Job&)>;

/// Files to work on, and how.
struct Batch
{
    std::vector<std::string> files;
    bool isSeveral = false;  ///< 7 is the code when some fail, and their names are told
    bool areLinesLed = true; ///< by the file's name
    unsigned int jobs = 1;   ///< threads
};

/// The files of the session, one after the other.
Batch batchOf(const Session& session);

/// Does it with all files, and goes on after one that fails; tells of failures and shows progress. What comes of the
/// files is written in their order. Returns the code for all of them. It throws a `Failure` only for wrong usage.
eExitCode forEachFile(Session& session, const Batch& batch, const FileWork& work);

/// The same for batchOf() the session.
eExitCode forEachFile(Session& session, const FileWork& work);

/// Does work that is not about one file each.
eExitCode once(Session& session, const FileWork& work);
