#include "edit/HeldScene.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <set>
#include <thread>

namespace
{
/// False when somebody else has the lock. True also where files have no locks, as on some networks.
bool tryLock(int descriptor)
{
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}
} // namespace

HeldScene::HeldScene(const Session& session, const SceneFile& saved)
    : mSession(session),
      mSaved(saved),
      mDescriptor(open(saved.name().c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
{
    using Clock = std::chrono::steady_clock;
    if (mDescriptor < 0)
        throw saved.failure(kBusy, std::strerror(errno));
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(session.lockWait());
    while (!tryLock(mDescriptor))
    {
        if (Clock::now() >= end)
        {
            close(mDescriptor);
            throw saved.failure(kBusy, "somebody else is writing to it");
        }
        constexpr std::chrono::milliseconds kPause(10); // a save takes about as long
        std::this_thread::sleep_for(kPause);
    }
}

HeldScene::~HeldScene()
{
    close(mDescriptor);
}

bool HeldScene::isThere() const
{
    struct stat named = {};
    struct stat held = {};
    if (stat(mSaved.name().c_str(), &named) != 0 || fstat(mDescriptor, &held) != 0 || named.st_dev != held.st_dev ||
        named.st_ino != held.st_ino)
        return false;
    try
    {
        SceneFile now(mSession, mSaved.name());
        const std::set<std::string> none;
        now.read(&none);
        return now.tail() == mSaved.tail();
    }
    catch (const Failure&) // it is gone, or no scene any more
    {
        return false;
    }
}
