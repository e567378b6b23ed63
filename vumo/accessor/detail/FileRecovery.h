#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/detail/File.h"
#include "vumo/accessor/detail/LockWait.h"

#include <string>

namespace vumo::Data::detail
{
/// Where the undo record of a file is looked for. One for each read or write, so that all its steps mean the same
/// place.
struct UndoPlace
{
    explicit UndoPlace(const std::string& fileName);

    const std::string file;      ///< as the caller names it
    const std::string record;    ///< beside the file itself where its name is a symbolic link; empty: there is no file
    const std::string directory; ///< of the record
};

/// Makes the file whole again if a change of it was interrupted: restores its old bytes from its undo record, unless
/// the change was complete, and removes the record. True also when there was nothing to do.
///
/// False, with the reason in `failure` and appended to `errors`, when that failed or the record does not fit the file;
/// such a record is never applied.
bool recover(const UndoPlace& place, const LockWait& wait, Accessor::Failure& failure, std::string& errors);

/// Locks a file that is open for update and makes it whole. False, with the reason in `failure` and appended to
/// `errors`, when somebody else is still writing to it after the wait, or when it cannot be made whole.
bool lockAndRecover(const File& file, const UndoPlace& place, const LockWait& wait, Accessor::Failure& failure,
                    std::string& errors);

/// Says whether the file has an undo record by which it may be neither the old one nor the new one now.
bool mayBeHalfWritten(const UndoPlace& place);
} // namespace vumo::Data::detail
