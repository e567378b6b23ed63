#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

namespace bench
{
/// Processor time of this process in seconds, that of the kernel on its behalf included, and that of programs which it
/// has run and waited for.
double processorTime();

/// Adds up the time of the parts of a round that count.
class Stopwatch
{
public:
    template <class Work>
    void time(Work&& work)
    {
        const double start = processorTime();
        std::forward<Work>(work)();
        mSeconds += processorTime() - start;
    }

    /// For the work of several threads: the time that the user waits for it.
    template <class Work>
    void timeByClock(Work&& work)
    {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point start = Clock::now();
        std::forward<Work>(work)();
        mSeconds += std::chrono::duration<double>(Clock::now() - start).count();
    }

    double seconds() const { return mSeconds; }

private:
    double mSeconds = 0;
};

/// One side of a comparison.
struct Side
{
    /// Does the work once from scratch, has the watch time what counts, and returns a digest of all results.
    std::function<std::uint64_t(Stopwatch&)> round;

    /// The digest of the right results.
    std::uint64_t expected;
};

/// The side's work several times in a round, for work that is too short for the clock.
Side repeated(const Side& side, unsigned int passes);

/// One workload while it runs: measures both sides alternately and hands the figures to Google Benchmark.
class Comparison
{
public:
    Comparison(benchmark::State& state, bool isQuick);

    /// The size of the workload: as given, or a small part of it for a quick run.
    std::size_t scaled(std::size_t count) const;

    /// Times the sides in turns, each round in a process of its own. The figures are nanoseconds for one of `count`
    /// elements, and the median of the ratios of all rounds. Throws `WrongResult` when a round fails or its digest is
    /// not as expected.
    void run(std::size_t count, const Side& library, const Side& peer);

    /// The same for sides that treat different numbers of elements.
    void run(std::size_t libraryCount, const Side& library, std::size_t peerCount, const Side& peer);

    /// Takes figures that are counted rather than timed, so that one round is enough.
    void count(double library, double peer);

private:
    benchmark::State& mState;
    bool mIsQuick;
};
} // namespace bench
