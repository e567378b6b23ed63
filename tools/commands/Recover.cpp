#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/SceneFile.h"

#include <filesystem>
#include <memory>

namespace fs = std::filesystem;

namespace
{
constexpr const char* kRecordEnding = ".vumo-undo";

/// Where the undo record of the file stands, by whatever link that is named.
fs::path recordOf(const std::string& fileName)
{
    std::error_code ignored;
    fs::path file = fs::canonical(fileName, ignored);
    return file += kRecordEnding;
}

eExitCode recover(Job& job, bool isDryRun)
{
    SceneFile scene(job.session, job.file, isDryRun ? SceneFile::kLook : SceneFile::kEdit);
    std::error_code ignored;
    const fs::path record = recordOf(job.file);
    if (!fs::exists(record, ignored))
        return kDone;
    if (isDryRun)
    {
        job.out << "a save was interrupted; would restore the file from " << record.filename().string() << "\n";
        return kDone;
    }
    const fs::file_time_type before = fs::last_write_time(job.file, ignored);
    const std::set<std::string> none;
    scene.read(&none); // each read begins with it
    const bool isRestored = fs::last_write_time(job.file, ignored) != before;
    job.out << (isRestored ? "restored the file as it was before a save that was interrupted\n"
                           : "removed the record of a save that was interrupted; the file was whole\n");
    return kDone;
}
} // namespace

void addRecover(Session& session)
{
    Command command = session.addCommand("recover", "Restore scenes whose save was interrupted");
    session.addFiles(command);
    const auto isDryRun = std::make_shared<bool>(false);
    command.addFlag("--dry-run", *isDryRun, "say what would be restored, and leave the files alone");
    session.setWork(command, [&session, isDryRun] {
        return forEachFile(session, [isDryRun](Job& job) { return recover(job, *isDryRun); });
    });
}
