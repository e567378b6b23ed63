#include "core/Batch.h"

#include "core/Progress.h"
#include "core/Text.h"

#include <iostream>
#include <vector>

namespace
{
/// Does the work with one file; its failures are told here.
eExitCode workOn(Job& job, const FileWork& work, Progress& progress)
{
    const auto fail = [&](eExitCode code, const std::string& text) {
        progress.hide();
        job.session.say(text);
        if (job.json)
            job.json->addText("error", text);
        return code;
    };
    try
    {
        return work(job);
    }
    catch (const Failure& failure)
    {
        if (failure.code() == kWrongUsage)
            throw;
        return fail(failure.code(), failure.what());
    }
    catch (const std::exception& error)
    {
        return fail(kBadInput, job.file + ": " + error.what());
    }
}

/// Writes the names in the form that --files-from reads.
void tellFailed(const Session& session, const std::vector<std::string>& failed, std::size_t all)
{
    session.say(std::to_string(failed.size()) + " of " + std::to_string(all) + " files failed:");
    for (const std::string& name : failed)
        std::cerr << name << (session.endsWithZero() ? '\0' : '\n');
}

/// Does the work with one file and writes what comes of it.
eExitCode workOn(Session& session, const std::string& file, const FileWork& work, Progress& progress)
{
    if (session.isJson())
    {
        JsonObject json;
        json.addText("file", file);
        Job job{session, file, session.out(), &json};
        const eExitCode code = workOn(job, work, progress);
        session.out() << json.add("code", code).text();
        return code;
    }
    LeadingWords leading(session.out(), printable(file) + "\t", session.lineEnd());
    std::ostream led(&leading);
    Job job{session, file, session.isBatch() ? led : session.out(), nullptr};
    return workOn(job, work, progress);
}
} // namespace

eExitCode forEachFile(Session& session, const FileWork& work)
{
    const std::vector<std::string> files = session.files();
    Progress progress(!session.isQuiet());
    std::vector<std::string> failed;
    eExitCode result = kDone;
    std::size_t done = 0;
    for (const std::string& file : files)
    {
        if (session.isJson())
            session.out() << (done == 0 ? "[\n" : ",\n");
        const eExitCode code = workOn(session, file, work, progress);
        ++done;
        progress.show(done, files.size());
        if (code > kNo)
            failed.push_back(file);
        if (code > kNo || result == kDone)
            result = code;
        if ((code > kNo && session.isFailFast()) || !session.hasReader())
            break;
    }
    if (session.isJson())
        session.out() << (done == 0 ? "[]\n" : "\n]\n");
    progress.hide();
    if (failed.empty() || !session.isBatch())
        return result;
    tellFailed(session, failed, files.size());
    return kSomeFailed;
}
