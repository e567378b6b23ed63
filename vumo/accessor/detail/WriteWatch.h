#pragma once

#include <sys/stat.h>

#include <string>

namespace vumo::Data::detail
{
/// Notices when somebody writes to a file while it is read, which takes no lock: what was read may then be neither the
/// old file nor the new one.
class WriteWatch
{
public:
    /// Begins to watch the file, of which nothing was read yet.
    explicit WriteWatch(const std::string& fileName);

    /// Says whether the file was written to since, or is being written to with an undo record. A file that was replaced
    /// as a whole was not: it is read as the one or as the other.
    bool hasSeenWriting() const;

private:
    struct stat statusNow() const;

    const std::string mFileName;
    const struct stat mBefore;
};
} // namespace vumo::Data::detail
