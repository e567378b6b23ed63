#include "vumo/accessor/detail/SceneUpdate.h"

#include "vumo/accessor/detail/Refusal.h"
#include "vumo/accessor/detail/SignalHold.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace vumo::Data::detail
{
namespace
{
/// Says whether the error means that there can be no record here. A disk that is full or fails is another matter.
bool admitsNoRecord(int error)
{
    // No permission, a read-only file system, a name that gets too long, a limit to the size of files.
    constexpr int kErrors[] = {EACCES, EPERM, EROFS, ENAMETOOLONG, EFBIG};
    return std::find(std::begin(kErrors), std::end(kErrors), error) != std::end(kErrors);
}
} // namespace

SceneUpdate::SceneUpdate(AccessorState& state)
    : mState(state),
      mFile(state.fileName, File::eMode::kUpdate),
      mPlace(state.fileName),
      mDirectory(mPlace.directory, File::eMode::kDirectory),
      mRemoveFailed("Could not remove the undo record " + mPlace.record),
      mHasJournal(state.durability == Accessor::kJournal),
      mNeedsRecord(mHasJournal && !mPlace.record.empty())
{
    mState.failure = {};
}

bool SceneUpdate::begin(std::string& errors)
{
    if (mFile.isOpen())
        return lockAndRecover(mFile, mPlace, LockWait(mState.lockWait), mState.failure, errors);
    mState.failure = openFailure(mFile);
    if (mPlace.file.empty())
        refuse(errors, "The accessor has no file to write to: read one first.\n");
    return refuse(errors, "Could not open " + mPlace.file + " for writing.");
}

bool SceneUpdate::checkUnchanged(std::uint64_t inFile, std::string& errors) const
{
    const bool mayOverwrite = mState.conflict == Accessor::kOverwrite && !mState.found.hasKept();
    if (mayOverwrite || inFile == mState.checksum)
        return true;
    mState.fail(Accessor::Failure::kChanged);
    return refuse(errors, changedMessage(mPlace.file));
}

bool SceneUpdate::run(FileChange& change, FileBlocks&& newMetadata, std::string& errors)
{
    change.narrow(mFile);
    if (mState.cost)
    {
        *mState.cost = change.cost(mFile);
        return true;
    }
    if (!makeChange(change, errors))
        return false;
    mState.checksum = newMetadata.checksum();
    if (mState.found.areKept)
        mState.found = std::move(newMetadata);
    return true;
}

bool SceneUpdate::makeChange(const FileChange& change, std::string& errors)
{
    mNeedsRecord = mNeedsRecord && !change.isDoneIn(mFile);
    if (!mRecord.take(mFile, change))
        return failBySystem(mFile.error(), withReason("Could not read the old bytes of " + mPlace.file, mFile.error()),
                            errors);
    if (!keepsName(errors))
        return false;
    const SignalHold hold;
    if (mNeedsRecord && !makeRecord(errors))
        return false;
    // From here on nothing is allocated until the file is whole again: memory that runs out must not leave it halfway.
    const char* fault = apply(change);
    if (!fault)
        fault = commit();
    if (!fault)
        return keepsName(errors);
    const int error = errno;
    const bool isWhole = undo();
    failBySystem(error, fault == mRemoveFailed.c_str() ? withReason(mRemoveFailed, error) : fault, errors);
    if (isWhole)
        return false;
    if (errors.back() != '\n')
        errors += '\n';
    errors += "The old bytes could not be put back: " + mPlace.file + " may be damaged" +
              (mHasRecord ? " until " + mPlace.record + " is applied, by the next read or write.\n" : ".\n");
    return false;
}

/// Says whether the name leads to the file still. If it has come to mean another one, a save would be lost unseen.
bool SceneUpdate::keepsName(std::string& errors)
{
    return mFile.hasName(mPlace.file) || mState.fail(Accessor::Failure::kChanged) ||
           refuse(errors, mPlace.file + " was replaced by somebody else meanwhile.\n");
}

/// Puts the record on the disk, and makes sure that it is found there.
bool SceneUpdate::makeRecord(std::string& errors)
{
    const int error = storeRecord();
    mHasRecord = error == 0;
    if (mHasRecord)
        return true;
    mNeedsRecord = !admitsNoRecord(error);
    return !mNeedsRecord ||
           failBySystem(error, withReason("Could not write the undo record " + mPlace.record, error), errors);
}

bool SceneUpdate::failBySystem(int error, const std::string& message, std::string& errors)
{
    mState.failure = {Accessor::Failure::kSystem, error};
    return refuse(errors, message);
}

/// 0, or why there is no record.
int SceneUpdate::storeRecord() const
{
    const File record(mPlace.record, File::eMode::kCreateRecord);
    if (!record.isOpen())
        return record.error();
    record.shareAs(mFile);
    if (mRecord.store(record) && record.sync() && syncDirectory())
        return 0;
    const int error = errno; // of the call that failed; removing may set another
    File::remove(mPlace.record);
    return error;
}

/// Null, or what failed.
const char* SceneUpdate::apply(const FileChange& change) const
{
    const std::uint64_t oldLength = mFile.size();
    const char* syncFailed = change.truncateFailed();
    for (const FileEdit& edit : change.edits())
    {
        syncFailed = edit.writeFailed;
        if (edit.bytes.empty())
            continue; // the file has them already
        if (!mFile.allowsPosition(edit.position))
            return edit.seekFailed;
        if (!mFile.write(edit.position, edit.bytes.data(), edit.bytes.size()))
            return edit.writeFailed;
    }
    // A disk may tell only now that it is full. Up to here the file has all its room, so the old bytes can be put back;
    // after the cut that takes new room. The cut is then synced for itself, as the record goes next.
    if (mHasJournal && !mFile.sync())
        return syncFailed;
    if (change.length() >= oldLength)
        return nullptr;
    const bool isCut = mFile.truncate(change.length()) && (!mHasJournal || mFile.sync());
    return isCut ? nullptr : change.truncateFailed();
}

/// Null, or what failed.
const char* SceneUpdate::commit()
{
    if (!mHasRecord)
        return nullptr;
    if (!File::remove(mPlace.record))
        return mRemoveFailed.c_str();
    mHasRecord = false;
    return syncDirectory() ? nullptr : mRemoveFailed.c_str();
}

/// Puts the old bytes back. False when they could not be; then the record, if there is one, stays.
bool SceneUpdate::undo()
{
    // commit() may have removed the record before it failed: the way back needs one as much as the way here did.
    if (mNeedsRecord && !mHasRecord)
        mHasRecord = storeRecord() == 0;
    if (!mRecord.restore(mFile) || (mHasJournal && !mFile.sync()))
        return false;
    if (mHasRecord)
        mHasRecord = !File::remove(mPlace.record);
    syncDirectory();
    return true;
}
} // namespace vumo::Data::detail
