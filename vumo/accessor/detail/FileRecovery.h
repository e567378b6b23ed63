#pragma once

#include "vumo/accessor/detail/File.h"

#include <string>

namespace vumo::Data::detail
{
/// The name of the undo record of a file: beside the file itself where the name is that of a symbolic link. Empty when
/// there is no such file.
std::string undoRecordName(const std::string& fileName);

/// The directory that a name leads into.
std::string directoryOf(const std::string& name);

/// Makes the file whole again if a change of it was interrupted: restores its old bytes from its undo record, unless
/// the change was complete, and removes the record. True also when there was nothing to do.
///
/// False, with the reason appended to `errors`, when that failed or the record does not fit the file; such a record is
/// never applied.
bool recover(const std::string& fileName, std::string& errors);

/// Says whether the file has an undo record by which it may be neither the old one nor the new one now.
bool isBetween(const std::string& fileName);

/// Begins to write to a file that was opened for update: locks it and makes it whole. False, with the reason appended
/// to `errors`, when it is not open, when somebody else is writing to it, or when it cannot be made whole.
bool beginWriting(const File& file, const std::string& fileName, std::string& errors);
} // namespace vumo::Data::detail
