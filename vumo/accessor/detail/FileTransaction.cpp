#include "vumo/accessor/detail/FileTransaction.h"

#include "vumo/accessor/detail/FileRecovery.h"

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
    constexpr int kErrors[] = {EACCES, EPERM, EROFS, ENAMETOOLONG, EFBIG};
    return std::find(std::begin(kErrors), std::end(kErrors), error) != std::end(kErrors);
}
} // namespace

FileTransaction::FileTransaction(const File& file, const std::string& fileName, Accessor::eDurability durability)
    : mFile(file),
      mFileName(fileName),
      mRecordName(undoRecordName(fileName)),
      mRemoveFailed("Could not remove the undo record " + mRecordName + ".\n"),
      mDirectory(directoryOf(mRecordName), File::eMode::kDirectory),
      mHasJournal(durability == Accessor::kJournal),
      mNeedsRecord(mHasJournal && !mRecordName.empty())
{
}

bool FileTransaction::run(FileChange& change, std::string& errors)
{
    change.narrow(mFile);
    mNeedsRecord = mNeedsRecord && !change.isDoneIn(mFile);
    if (!mRecord.take(mFile, change))
    {
        errors += "Could not read the old bytes of " + mFileName + ".\n";
        return false;
    }
    if (!mFile.hasName(mFileName))
    {
        errors += mFileName + " was replaced by somebody else meanwhile.\n";
        return false;
    }
    if (mNeedsRecord && !begin(errors))
        return false;
    // From here on nothing is allocated until the file is whole again.
    const char* fault = apply(change);
    if (!fault)
        fault = commit();
    if (!fault)
        return true;
    const bool isWhole = undo();
    errors += fault;
    if (isWhole)
        return false;
    if (errors.back() != '\n')
        errors += '\n';
    errors += "The old bytes could not be put back: " + mFileName + " may be damaged" +
              (mHasRecord ? " until " + mRecordName + " is applied, by the next read or write.\n" : ".\n");
    return false;
}

/// Puts the record on the disk, and makes sure that it is found there.
bool FileTransaction::begin(std::string& errors)
{
    const int error = storeRecord();
    mHasRecord = error == 0;
    if (mHasRecord)
        return true;
    mNeedsRecord = !admitsNoRecord(error);
    if (mNeedsRecord)
        errors += "Could not write the undo record " + mRecordName + ".\n";
    return !mNeedsRecord;
}

/// 0, or why there is no record.
int FileTransaction::storeRecord() const
{
    const File record(mRecordName, File::eMode::kCreateRecord);
    if (!record.isOpen())
        return record.openError();
    record.shareAs(mFile);
    if (mRecord.store(record) && record.sync() && syncDirectory())
        return 0;
    const int error = errno;
    File::remove(mRecordName);
    return error;
}

/// Null, or what failed.
const char* FileTransaction::apply(const FileChange& change) const
{
    const std::uint64_t oldLength = mFile.size();
    const char* syncFailed = change.truncateFailed();
    for (const FileEdit& edit : change.edits())
    {
        syncFailed = edit.writeFailed;
        if (edit.bytes.empty())
            continue;
        if (!mFile.allowsPosition(edit.position))
            return edit.seekFailed;
        if (!mFile.write(edit.position, edit.bytes.data(), edit.bytes.size()))
            return edit.writeFailed;
    }
    if (mHasJournal && !mFile.sync())
        return syncFailed;
    if (change.length() >= oldLength)
        return nullptr;
    const bool isCut = mFile.truncate(change.length()) && (!mHasJournal || mFile.sync());
    return isCut ? nullptr : change.truncateFailed();
}

/// Null, or what failed.
const char* FileTransaction::commit()
{
    if (!mHasRecord)
        return nullptr;
    if (!File::remove(mRecordName))
        return mRemoveFailed.c_str();
    mHasRecord = false;
    return syncDirectory() ? nullptr : mRemoveFailed.c_str();
}

/// Puts the old bytes back. False when they could not be; then the record, if there is one, stays.
bool FileTransaction::undo()
{
    if (mNeedsRecord && !mHasRecord)
        mHasRecord = storeRecord() == 0;
    if (!mRecord.restore(mFile) || (mHasJournal && !mFile.sync()))
        return false;
    if (mHasRecord)
        mHasRecord = !File::remove(mRecordName);
    syncDirectory();
    return true;
}
} // namespace vumo::Data::detail
