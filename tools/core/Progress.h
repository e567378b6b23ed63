#pragma once

#include <chrono>
#include <cstddef>

/// A line on a terminal that says how far some work of more than a second has come.
class Progress
{
public:
    /// `isWanted` shows it, if standard error is a terminal.
    explicit Progress(bool isWanted);

    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void show(std::size_t done, std::size_t all);

    /// Takes the line away, for other words in its place, until it is shown again.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    bool mIsWanted;
    bool mIsShown = false;
    Clock::time_point mNext = Clock::now() + std::chrono::seconds(1);
};
