#include "vumo/accessor/detail/FileRecovery.h"

#include "vumo/accessor/detail/UndoRecord.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

namespace vumo::Data::detail
{
namespace
{
constexpr char kRecordEnding[] = ".vumo-undo";

bool fail(std::string& errors, const std::string& message)
{
    errors += message + "\n";
    return false;
}

/// Does not open the file: a process that can open no more files has not lost its record.
bool isAbsent(const std::string& recordName)
{
    struct stat ignored = {};
    return lstat(recordName.c_str(), &ignored) != 0 && (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

/// In a directory where everybody may put files, a record of somebody else's is no reason to change a file.
bool isTrusted(const File& recordFile, const std::string& recordName, const File& file)
{
    const File directory(directoryOf(recordName), File::eMode::kDirectory);
    return recordFile.hasOwnerOf(file) || (directory.isOpen() && !directory.isSticky());
}

std::string notARecord(const std::string& recordName)
{
    return recordName + " is not an undo record that can be used. Move it away to go on.";
}

std::string notRestored(const std::string& fileName, const std::string& recordName)
{
    return "Could not restore " + fileName + " from " + recordName + ".";
}

bool lock(const File& file, const std::string& fileName, std::string& errors)
{
    return file.tryLock() || fail(errors, fileName + " is being written by somebody else.");
}

/// Makes the file what it was before the change, or leaves it what it is after all of it.
bool apply(const UndoRecord& record, const File& file, const std::string& fileName, const std::string& recordName,
           std::string& errors)
{
    const UndoRecord::eFit fit = record.fit(file);
    if (fit == UndoRecord::eFit::kNone)
        return fail(errors,
                    "The undo record " + recordName + " does not fit " + fileName +
                        " any more, which was changed since. Remove the record to go on with the file as it is.");
    const bool isKnown = fit != UndoRecord::eFit::kUnknown;
    const bool isWhole = isKnown && (fit != UndoRecord::eFit::kBetween || record.restore(file));
    return (isWhole && file.sync()) || fail(errors, notRestored(fileName, recordName));
}

/// The file is open for update and locked.
bool recover(const File& file, const std::string& fileName, const std::string& recordName, std::string& errors)
{
    if (isAbsent(recordName))
        return true;
    const File recordFile(recordName, File::eMode::kReadRecord);
    if (!recordFile.isOpen())
        return fail(errors, notARecord(recordName));
    UndoRecord record;
    const UndoRecord::eContent content = record.load(recordFile);
    if (content == UndoRecord::eContent::kUnreadable)
        return fail(errors, notRestored(fileName, recordName));
    if (content == UndoRecord::eContent::kForeign || !isTrusted(recordFile, recordName, file))
        return fail(errors, notARecord(recordName));
    if (content == UndoRecord::eContent::kComplete && !apply(record, file, fileName, recordName, errors))
        return false;
    if (!File::remove(recordName))
        return fail(errors, "Could not remove the undo record " + recordName + ".");
    File(directoryOf(recordName), File::eMode::kDirectory).sync();
    return true;
}

/// Says whether the writer of the record did not come to the end of it. Nobody is writing it.
bool isIncomplete(const std::string& recordName)
{
    const File recordFile(recordName, File::eMode::kReadRecord);
    UndoRecord record;
    return recordFile.isOpen() && record.load(recordFile) == UndoRecord::eContent::kIncomplete;
}

/// What can be said of a file that cannot be written to and has a record.
bool recoverNothing(const std::string& fileName, const std::string& recordName, std::string& errors)
{
    const File file(fileName, File::eMode::kRead);
    if (file.isOpen() && !lock(file, fileName, errors))
        return false;
    return isIncomplete(recordName) ||
           fail(errors, "Writing " + fileName + " was interrupted. Make it writable and read it again: " + recordName +
                            " holds what restores it.");
}
} // namespace

std::string undoRecordName(const std::string& fileName)
{
    const std::unique_ptr<char, decltype(&std::free)> path(realpath(fileName.c_str(), nullptr), &std::free);
    if (!path && errno == ENOMEM)
        throw std::bad_alloc(); // there can be a record all the same
    return path ? std::string(path.get()) + kRecordEnding : std::string();
}

std::string directoryOf(const std::string& name)
{
    return name.substr(0, name.rfind('/') + 1);
}

bool recover(const std::string& fileName, std::string& errors)
{
    const std::string recordName = undoRecordName(fileName);
    if (isAbsent(recordName))
        return true;
    const File file(fileName, File::eMode::kUpdate);
    if (!file.isOpen())
        return recoverNothing(fileName, recordName, errors);
    return lock(file, fileName, errors) && recover(file, fileName, recordName, errors);
}

bool isBetween(const std::string& fileName)
{
    const std::string recordName = undoRecordName(fileName);
    if (isAbsent(recordName))
        return false;
    const File file(fileName, File::eMode::kRead);
    return !file.isOpen() || !file.tryLock() || !isIncomplete(recordName);
}

bool beginWriting(const File& file, const std::string& fileName, std::string& errors)
{
    if (!file.isOpen())
    {
        if (fileName.empty())
            fail(errors, "The accessor has no file to write to: read one first.");
        errors += "Could not open " + fileName + " for writing.";
        return false;
    }
    return lock(file, fileName, errors) && recover(file, fileName, undoRecordName(fileName), errors);
}
} // namespace vumo::Data::detail
