#pragma once

#include "vumo/accessor/detail/AccessorState.h"
#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/FileChange.h"
#include "vumo/accessor/detail/FileRecovery.h"
#include "vumo/accessor/detail/UndoRecord.h"

#include <string>

namespace vumo::Data::detail
{
/// One write to a scene file: a change in place that is made as a whole or not at all.
///
/// What the change replaces is kept in memory, and puts the file back when a call fails. With a journal it is also
/// stored in an undo record beside the file, before the first byte of the file changes and until the last one is on the
/// disk, so that recover() can put the file back after a crash. Where the directory admits no record the change is
/// made without one. Writes no byte but those of the change, and reads few others.
class SceneUpdate
{
public:
    /// Opens the file of the state. It stays open, and from begin() on locked, as long as this object lives. Borrows
    /// the state.
    explicit SceneUpdate(AccessorState& state);
    SceneUpdate(const SceneUpdate&) = delete;
    SceneUpdate& operator=(const SceneUpdate&) = delete;

    /// Locks the file, and makes it whole if an earlier write was interrupted. False, with the reason appended to
    /// `errors`, when it is not open, when somebody else is writing to it, or when it cannot be made whole.
    bool begin(std::string& errors);

    /// Says by their checksum whether the metadata that stand in the file, now that it is locked, are those that the
    /// accessor knows. False, with the reason appended to `errors`, when somebody else has changed them and they are
    /// not to be overwritten.
    bool checkUnchanged(std::uint64_t inFile, std::string& errors) const;

    /// Takes note of why a step failed that the change is made in: for the system's reason if there is one. False.
    bool failAs(Accessor::Failure::eKind kind) const { return mState.fail(kind, mFile.error()); }

    /// To read what the change is made of.
    const File& file() const { return mFile; }

    /// Makes the change, or only gives its cost if the state asks for that. Makes it once, or as much of it as changes
    /// anything. From then on the accessor knows the new metadata. False, with the file as it was and the message of
    /// the step that failed in `errors`.
    bool run(FileChange& change, FileBlocks&& newMetadata, std::string& errors);

private:
    bool makeChange(const FileChange& change, std::string& errors);
    bool keepsName(std::string& errors);
    bool makeRecord(std::string& errors);
    bool failBySystem(int error, const std::string& message, std::string& errors);
    int storeRecord() const;
    const char* apply(const FileChange& change) const;
    const char* commit();
    bool undo();
    bool syncDirectory() const { return !mDirectory.isOpen() || mDirectory.sync(); }

    AccessorState& mState;
    const File mFile;
    const UndoPlace mPlace; // found when the file was open: the record is for that one
    const File mDirectory;
    const std::string mRemoveFailed;
    const bool mHasJournal;
    bool mNeedsRecord;
    bool mHasRecord = false;
    UndoRecord mRecord;
};
} // namespace vumo::Data::detail
