#include "edit/Save.h"

#include "core/FileTree.h"
#include "core/Text.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>

using namespace vumo::Data;
namespace fs = std::filesystem;

namespace
{
/// A new file beside the one that it is to become, with that one's ending. Removed unless it is renamed.
class NewFile
{
public:
    /// Copies a file. In the end it has that one's mode, or that of the file whose place it takes.
    NewFile(const std::string& from, const std::string& to) : mTo(to)
    {
        std::error_code error;
        mMode = fs::status(fs::exists(to, error) ? to : from, error).permissions();
        const std::string name = std::string(kNewFileStart) + "XXXXXX" + fs::path(to).extension().string();
        const fs::path path = fs::path(to).replace_filename(name);
        mName = path.string();
        const int file = mkstemps(mName.data(), static_cast<int>(path.extension().string().size()));
        if (file < 0)
            throw Failure(kNotWritten, mTo + ": " + std::strerror(errno));
        close(file);
        fs::copy_file(from, mName, fs::copy_options::overwrite_existing, error); // with its mode
        if (!error)
            fs::permissions(mName, fs::perms::owner_read | fs::perms::owner_write, error);
        if (error)
        {
            unlink(mName.c_str());
            throw Failure(kNotWritten, mTo + ": " + error.message());
        }
    }

    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    ~NewFile()
    {
        if (!mIsKept)
            unlink(mName.c_str());
    }

    const std::string& name() const { return mName; }

    void keep()
    {
        mIsKept = chmod(mName.c_str(), static_cast<mode_t>(mMode)) == 0 && rename(mName.c_str(), mTo.c_str()) == 0;
        if (!mIsKept)
            throw Failure(kNotWritten, mTo + ": " + std::strerror(errno));
    }

private:
    std::string mName;
    const std::string mTo;
    fs::perms mMode{};
    bool mIsKept = false;
};

void printCost(const Job& job, const SceneFile& scene)
{
    const Accessor::WriteCost cost = scene.estimateWrite();
    if (job.json)
    {
        JsonObject object;
        object.add("position", cost.position).add("bytes", cost.bytes);
        object.add("oldLength", cost.oldLength).add("newLength", cost.newLength);
        job.json->add(scene.name() == job.file ? "cost" : "costOfTo", object.text());
        return;
    }
    if (scene.name() != job.file)
        job.out << printable(scene.name()) << ": ";
    if (cost.bytes == 0 && cost.oldLength == cost.newLength)
        job.out << "would write nothing: the file has all that\n";
    else
        job.out << "would write " << cost.bytes << " bytes, from byte " << cost.position << " on; the file has "
                << cost.oldLength << " bytes, and would have " << cost.newLength << "\n";
}

SceneFile openToReplace(const Job& job, const std::string& fileName)
{
    try
    {
        return SceneFile(job.session, fileName, SceneFile::kEdit);
    }
    catch (const Failure& failure)
    {
        throw Failure(kNotWritten, failure.what());
    }
}

/// Sees that a file may be put in the place of what stands there: nobody is writing to it, and no undo record would be
/// taken for that of the new one. Restores what stands there, if it is a scene whose save was interrupted.
void makeReplaceable(const Job& job, const std::string& fileName)
{
    std::error_code ignored;
    const std::string record = SceneFile::undoRecordOf(fileName);
    if (!fs::exists(fs::symlink_status(fileName, ignored)))
    {
        if (!record.empty())
            throw Failure(kNotRestored, record + " is left from a save of a scene that is gone; remove it first");
        return;
    }
    SceneFile scene = openToReplace(job, fileName);
    try
    {
        const std::set<std::string> none;
        scene.read(&none);
        scene.estimateWrite(); // takes the lock for a moment
    }
    catch (const Failure& failure) // what else is wrong with it ends with it
    {
        if (failure.code() == kBusy || failure.code() == kNotRestored)
            throw;
    }
}

/// Saves to a copy of the file that was read.
void saveCopy(const Job& job, SceneFile& scene, const std::string& out)
{
    if (fs::path(out).extension() != fs::path(scene.name()).extension())
        throw Failure(kWrongUsage, "-o " + inQuotes(out) + " has another ending than " + scene.name() +
                                       "; cp --to copies from one kind of file to the other");
    makeReplaceable(job, out);
    std::error_code ignored;
    NewFile file(scene.name(), fs::weakly_canonical(out, ignored).string()); // a link stays one
    SceneFile copy(job.session, file.name(), SceneFile::kEdit);
    const std::set<std::string> none;
    copy.read(&none);
    if (copy.metadata().checksum() != scene.metadata().checksum())
        throw scene.failure(kBusy, "somebody else has changed the metadata meanwhile");
    copy.metadata().associations() = scene.metadata().associations();
    copy.metadata().setStructures(scene.metadata().structures());
    copy.metadata().setNumbers(scene.metadata().numbers());
    copy.write();
    file.keep();
}
/// Saves the file as it is: what was read would be written in the words of this version, even where nothing changed.
void saveUnchanged(const Job& job)
{
    SceneFile scene = openToEdit(job, job.file);
    const std::set<std::string> none;
    scene.read(&none);
    save(job, scene);
}
} // namespace

eExitCode makeEdits(const Job& job, const std::vector<Edit>& edits)
{
    SceneFile scene = openToEdit(job, job.file);
    const std::set<std::string> nodes = nodesOf(edits);
    const bool needsAll = std::any_of(edits.begin(), edits.end(), std::mem_fn(&Edit::removesStructures));
    scene.read(needsAll ? nullptr : &nodes);
    const Accessor::StructureSet structures = scene.metadata().structures();
    for (const Edit& edit : edits)
        apply(edit, scene);
    const bool keepsNodes =
        std::all_of(edits.begin(), edits.end(), [](const Edit& edit) { return edit.words.empty(); });
    if (keepsNodes && scene.metadata().structures() == structures)
        saveUnchanged(job);
    else
        save(job, scene);
    return kDone;
}

SceneFile openToEdit(const Job& job, const std::string& fileName)
{
    const Saving& saving = job.session.saving();
    const bool isWritten = saving.out.empty() && !saving.isDryRun;
    if (saving.isDryRun && !SceneFile::undoRecordOf(fileName).empty()) // to read it would restore it
        throw Failure(kNotRestored, fileName + ": a save was interrupted; vumo recover restores the file");
    SceneFile scene(job.session, fileName, isWritten ? SceneFile::kEdit : SceneFile::kLook);
    if (saving.digits == "six")
        scene.metadata().setNumbers(kSixDigits);
    return scene;
}

void save(const Job& job, SceneFile& scene)
{
    const Saving& saving = job.session.saving();
    if (!saving.tail.empty() && saving.tail != scene.tail())
        throw scene.failure(kBusy, "the metadata are not those with the checksum " + saving.tail);
    if (saving.isDryRun)
        printCost(job, scene);
    else if (!saving.out.empty())
        saveCopy(job, scene, saving.out);
    else
        scene.write();
}

void checkSaving(const Session& session, bool writesTwice)
{
    if (!session.saving().out.empty() && (session.isBatch() || writesTwice))
        throw Failure(kWrongUsage, "-o takes the result of one file");
    const std::string& tail = session.saving().tail;
    const bool isTail = tail.size() == std::size_t{SceneFile::kTailDigits} &&
                        tail.find_first_not_of("0123456789abcdef") == std::string::npos;
    if (!tail.empty() && !isTail)
        throw Failure(kWrongUsage, inQuotes(tail) + " is no checksum; scan gives them as \"tail\"");
}
