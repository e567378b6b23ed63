#include "vumo/accessor/detail/WriteWatch.h"

#include "vumo/accessor/detail/FileRecovery.h"

namespace vumo::Data::detail
{
WriteWatch::WriteWatch(const std::string& fileName) : mFileName(fileName), mBefore(statusNow()) {}

bool WriteWatch::hasSeenWriting() const
{
    const struct stat now = statusNow();
    if (now.st_ino != mBefore.st_ino || now.st_dev != mBefore.st_dev)
        return false;
    return now.st_size != mBefore.st_size || now.st_mtim.tv_sec != mBefore.st_mtim.tv_sec ||
           now.st_mtim.tv_nsec != mBefore.st_mtim.tv_nsec || isBetween(mFileName);
}

struct stat WriteWatch::statusNow() const
{
    struct stat status = {};
    if (stat(mFileName.c_str(), &status) != 0)
        status = {};
    return status;
}
} // namespace vumo::Data::detail
