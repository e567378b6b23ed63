#include "core/Progress.h"

#include <unistd.h>

#include <iostream>
#include <string>

Progress::Progress(bool isWanted) : mIsWanted(isWanted && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress()
{
    hide();
}

void Progress::show(std::size_t done, std::size_t all)
{
    constexpr std::chrono::milliseconds kPause(200);
    const Clock::time_point now = Clock::now();
    if (!mIsWanted || now < mNext)
        return;
    std::cerr << "\r" + std::to_string(done) + " of " + std::to_string(all) + " files" << std::flush;
    mIsShown = true;
    mNext = now + kPause;
}

void Progress::hide()
{
    if (mIsShown)
        std::cerr << "\r\x1b[K" << std::flush; // clears the line
    mIsShown = false;
}
