#include "vumo/accessor/detail/FileRecovery.h"

#include "vumo/accessor/detail/Refusal.h"
#include "vumo/accessor/detail/SignalHold.h"
#include "vumo/accessor/detail/UndoRecord.h"

#include <cerrno>

namespace vumo::Data::detail
{
namespace
{
constexpr char kRecordEnding[] = ".vumo-undo";

/// In a directory where everybody may put files, a record that another user made is no reason to change a file.
bool isTrusted(const File& recordFile, const File& file, const UndoPlace& place)
{
    const File directory(place.directory, File::eMode::kDirectory);
    return recordFile.hasOwnerOf(file) || (directory.isOpen() && !directory.isSticky());
}

bool refuseRecord(const UndoPlace& place, const File& recordFile, Accessor::Failure& failure, std::string& errors)
{
    failure.systemError = recordFile.error();
    return refuse(errors, place.record + " is not an undo record that can be used. Move it away to go on.\n");
}

bool failToRestore(const UndoPlace& place, int error, Accessor::Failure& failure, std::string& errors)
{
    failure.systemError = error;
    return refuse(errors, withReason("Could not restore " + place.file + " from " + place.record, error));
}

bool lock(const File& file, const UndoPlace& place, const LockWait& wait, Accessor::Failure& failure,
          std::string& errors)
{
    while (!file.tryLock())
    {
        if (wait.pause())
            continue;
        failure = {Accessor::Failure::kLocked};
        return refuse(errors, place.file + " is being written by somebody else.\n");
    }
    return true;
}

/// Makes the file what it was before the change, or leaves it what it is after all of it.
bool apply(const UndoRecord& record, const File& file, const UndoPlace& place, Accessor::Failure& failure,
           std::string& errors)
{
    const UndoRecord::eFit fit = record.fit(file);
    if (fit == UndoRecord::eFit::kNone)
        return refuse(errors,
                      "The undo record " + place.record + " does not fit " + place.file +
                          " any more, which was changed since. Remove the record to go on with the file as it is.\n");
    const SignalHold hold;
    const bool isKnown = fit != UndoRecord::eFit::kUnknown;
    const bool isWhole = isKnown && (fit != UndoRecord::eFit::kMixed || record.restore(file));
    // Also a file that needs nothing is synced: its record goes next, and what it shows may not be on the disk yet.
    return (isWhole && file.sync()) || failToRestore(place, file.error(), failure, errors);
}

/// The file is open for update and locked.
bool recoverLocked(const File& file, const UndoPlace& place, Accessor::Failure& failure, std::string& errors)
{
    if (File::isAbsent(place.record))
        return true;
    failure = {Accessor::Failure::kNotRestored};
    const File recordFile(place.record, File::eMode::kReadRecord);
    if (!recordFile.isOpen())
        return refuseRecord(place, recordFile, failure, errors);
    UndoRecord record;
    const UndoRecord::eContent content = record.load(recordFile);
    if (content == UndoRecord::eContent::kUnreadable)
        return failToRestore(place, recordFile.error(), failure, errors);
    if (content == UndoRecord::eContent::kForeign || !isTrusted(recordFile, file, place))
        return refuseRecord(place, recordFile, failure, errors);
    // One that is not complete says nothing about the file, which its writer had not touched yet.
    if (content == UndoRecord::eContent::kComplete && !apply(record, file, place, failure, errors))
        return false;
    if (!File::remove(place.record))
    {
        failure.systemError = errno;
        return refuse(errors, withReason("Could not remove the undo record " + place.record, errno));
    }
    failure = {};
    // Should that fail: a record that came back after a crash would find the file as it is now, and go again.
    File(place.directory, File::eMode::kDirectory).sync();
    return true;
}

/// Says whether the writer of the record did not come to the end of it. Nobody is writing it.
bool isIncomplete(const UndoPlace& place)
{
    const File recordFile(place.record, File::eMode::kReadRecord);
    UndoRecord record;
    return recordFile.isOpen() && record.load(recordFile) == UndoRecord::eContent::kIncomplete;
}

/// What can be said of a file that cannot be written to, for that error, and has a record.
bool recoverNothing(const UndoPlace& place, int error, const LockWait& wait, Accessor::Failure& failure,
                    std::string& errors)
{
    const File file(place.file, File::eMode::kRead);
    if (file.isOpen() && !lock(file, place, wait, failure, errors))
        return false;
    if (isIncomplete(place))
        return true;
    failure = {Accessor::Failure::kNotRestored, error};
    return refuse(errors, "Writing " + place.file + " was interrupted. Make it writable and read it again: " +
                              place.record + " holds what restores it.\n");
}

std::string recordNameOf(const std::string& fileName)
{
    const std::string path = File::realName(fileName);
    return path.empty() ? "" : path + kRecordEnding;
}
} // namespace

UndoPlace::UndoPlace(const std::string& fileName)
    : file(fileName),
      record(recordNameOf(fileName)),
      directory(record.substr(0, record.rfind('/') + 1))
{
}

bool recover(const UndoPlace& place, const LockWait& wait, Accessor::Failure& failure, std::string& errors)
{
    if (File::isAbsent(place.record)) // nearly always, and a file that may only be read is not opened for writing
        return true;
    const File file(place.file, File::eMode::kUpdate);
    return file.isOpen() ? lockAndRecover(file, place, wait, failure, errors)
                         : recoverNothing(place, file.error(), wait, failure, errors);
}

bool lockAndRecover(const File& file, const UndoPlace& place, const LockWait& wait, Accessor::Failure& failure,
                    std::string& errors)
{
    return lock(file, place, wait, failure, errors) && recoverLocked(file, place, failure, errors);
}

bool mayBeHalfWritten(const UndoPlace& place)
{
    if (File::isAbsent(place.record))
        return false;
    const File file(place.file, File::eMode::kRead);
    // Whoever has the lock is writing now; without one a record that is whole was left by a crash.
    return !file.isOpen() || !file.tryLock() || !isIncomplete(place);
}
} // namespace vumo::Data::detail
