#include "vumo/accessor/detail/SignalHold.h"

#include <cerrno>
#include <ctime>

namespace vumo::Data::detail
{
namespace
{
template <class... Signals>
sigset_t setOf(Signals... signals)
{
    sigset_t set;
    sigemptyset(&set);
    (sigaddset(&set, signals), ...);
    return set;
}
} // namespace

SignalHold::SignalHold()
{
    const sigset_t held = setOf(SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU, SIGXFSZ);
    sigset_t pending;
    sigpending(&pending);
    mHadLimit = sigismember(&pending, SIGXFSZ) != 0;
    pthread_sigmask(SIG_BLOCK, &held, &mBefore);
}

SignalHold::~SignalHold()
{
    const int error = errno; // of a call that failed while this lived
    const sigset_t limit = setOf(SIGXFSZ);
    const timespec noTime = {};
    if (!mHadLimit) // otherwise it is the caller's, who blocks it
        sigtimedwait(&limit, nullptr, &noTime);
    pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    errno = error;
}
} // namespace vumo::Data::detail
