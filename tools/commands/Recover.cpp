#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/SceneFile.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string_view>

namespace fs = std::filesystem;

namespace
{
/// Says whether the file begins like one.
bool isUndoRecord(const std::string& name)
{
    constexpr std::string_view kStart = "VUMOUNDO";
    std::string start(kStart.size(), '\0');
    std::error_code ignored;
    return fs::is_regular_file(fs::symlink_status(name, ignored)) &&
           std::ifstream(name, std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size())) &&
           start == kStart;
}

/// Tells what became of the file: a word for programs, a sentence for people, who need none of a file that is whole.
void tell(Job& job, const char* result, const std::string& sentence)
{
    if (job.json)
        job.json->addText("result", result);
    else if (!sentence.empty())
        job.out << sentence << "\n";
}

eExitCode recover(Job& job, bool isDryRun)
{
    const std::string record = SceneFile::undoRecordOf(job.file);
    SceneFile scene(job.session, job.file, isDryRun || record.empty() ? SceneFile::kLook : SceneFile::kRestore);
    if (record.empty())
    {
        tell(job, "whole", "");
        return kDone;
    }
    if (isDryRun && !isUndoRecord(record))
        throw Failure(kNotRestored, record + " is not an undo record that can be used; move it away to go on");
    if (isDryRun)
    {
        tell(job, "interrupted",
             "a save was interrupted; would restore the file from " + fs::path(record).filename().string());
        return kDone;
    }
    std::error_code ignored;
    const fs::file_time_type before = fs::last_write_time(job.file, ignored);
    const std::set<std::string> none;
    scene.read(&none); // each read begins with it
    const bool isRestored = fs::last_write_time(job.file, ignored) != before;
    if (isRestored)
        tell(job, "restored", "restored the file as it was before a save that was interrupted");
    else
        tell(job, "record removed", "removed the record of a save that was interrupted; the file was whole");
    return kDone;
}
} // namespace

void addRecover(Session& session)
{
    Command command = session.addCommand("recover", "Restore scenes whose save was interrupted");
    session.addFiles(command);
    session.addJson(command);
    const auto isDryRun = std::make_shared<bool>(false);
    command.addFlag("--dry-run", *isDryRun, "say what would be restored, and leave the files alone");
    session.setWork(command, [&session, isDryRun] {
        return forEachFile(session, [isDryRun](Job& job) { return recover(job, *isDryRun); });
    });
}
