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

eExitCode recover(Job& job, bool isDryRun)
{
    const std::string record = SceneFile::undoRecordOf(job.file);
    SceneFile scene(job.session, job.file, isDryRun || record.empty() ? SceneFile::kLook : SceneFile::kRestore);
    if (record.empty())
        return kDone;
    if (isDryRun && !isUndoRecord(record))
        throw Failure(kNotRestored, record + " is not an undo record that can be used; move it away to go on");
    if (isDryRun)
    {
        job.out << "a save was interrupted; would restore the file from " << fs::path(record).filename().string()
                << "\n";
        return kDone;
    }
    std::error_code ignored;
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
