#pragma once

#include <algorithm>
#include <chrono>
#include <thread>

namespace vumo::Data::detail
{
/// The time that a caller gives others to finish with a file.
class LockWait
{
public:
    explicit LockWait(unsigned int milliseconds) : mEnd(Clock::now() + std::chrono::milliseconds(milliseconds)) {}

    /// Sleeps a little, after which another try is due. False, at once, when the time is over.
    bool pause() const
    {
        constexpr Clock::duration kPause = std::chrono::milliseconds(2);
        const Clock::duration left = mEnd - Clock::now();
        if (left <= Clock::duration::zero())
            return false;
        std::this_thread::sleep_for(std::min(left, kPause));
        return true;
    }

private:
    using Clock = std::chrono::steady_clock;

    const Clock::time_point mEnd;
};
} // namespace vumo::Data::detail
