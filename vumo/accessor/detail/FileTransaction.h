#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/FileChange.h"
#include "vumo/accessor/detail/UndoRecord.h"

#include <string>

namespace vumo::Data::detail
{
/// A change of a file in place that is made as a whole or not at all.
///
/// What the change replaces is kept in memory, and puts the file back when a call fails. With a journal it is also
/// stored in an undo record beside the file, before the first byte of the file changes and until the last one is on the
/// disk, so that recover() can put the file back after a crash. Where the directory admits no record the change is
/// made without one. Writes no byte but those of the change, and reads few others.
class FileTransaction
{
public:
    /// The file is open for update and locked. Borrows it.
    FileTransaction(const File& file, const std::string& fileName, Accessor::eDurability durability);
    FileTransaction(const FileTransaction&) = delete;
    FileTransaction& operator=(const FileTransaction&) = delete;

    /// Makes the change, once, or as much of it as changes anything. False, with the file as it was and the message of
    /// the step that failed in `errors`.
    bool run(FileChange& change, std::string& errors);

private:
    bool begin(std::string& errors);
    int storeRecord() const;
    const char* apply(const FileChange& change) const;
    const char* commit();
    bool undo();
    bool syncDirectory() const { return !mDirectory.isOpen() || mDirectory.sync(); }

    const File& mFile;
    const std::string mFileName;
    const std::string mRecordName;
    const std::string mRemoveFailed;
    const File mDirectory;
    const bool mHasJournal;
    bool mNeedsRecord;
    bool mHasRecord = false;
    UndoRecord mRecord;
};
} // namespace vumo::Data::detail
