#include "benchmarks/Comparison.h"

#include "benchmarks/ChildProcess.h"
#include "benchmarks/Records.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace bench
{
namespace
{
constexpr std::size_t kQuickDivisor = 50;

/// Has the allocator merge what was freed before; a large request is what makes it do so. Otherwise the order in which
/// memory was freed would decide where the next round finds its own.
void tidyHeap()
{
    constexpr std::size_t kLarge = 100'000;
    void* const block = std::malloc(kLarge);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

/// What a round sends home.
struct Report
{
    double seconds;
    std::uint64_t digest;
};

Report play(const Side& side)
{
    tidyHeap();
    Stopwatch watch;
    const std::uint64_t digest = side.round(watch);
    return {watch.seconds(), digest};
}

/// What the system took to hand out the pages that this process has touched so far, roughly.
double secondsOfPageFaults()
{
    constexpr double kSecondsEach = 2e-6;
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_minflt) * kSecondsEach;
}

/// The first time is not measured: it is the kernel that takes longest then, to hand out memory and files that were
/// not touched before, and how much of that a user meets depends on what the program did before. The second time finds
/// memory as this side leaves it; where the allocator gives it other pages, which takes up to as long as all the rest,
/// a later one does. A side that takes new pages every time pays for them.
Report playUntilSettled(const Side& side)
{
    constexpr int kMostTimes = 5;
    constexpr double kLargestShare = 0.01;
    Report report = play(side);
    for (int i = 1; i < kMostTimes; ++i)
    {
        const double before = secondsOfPageFaults();
        report = play(side);
        if (secondsOfPageFaults() - before <= report.seconds * kLargestShare)
            break;
    }
    return report;
}

/// Plays a round in a process of its own. Each starts with the same memory, so that no side profits or suffers from
/// the order in which the other, or it itself, left the heap.
double secondsOf(const Side& side, const char* name)
{
    const Report report =
        inChildProcess([&] { return playUntilSettled(side); }, std::string(name) + " does not finish");
    if (report.digest != side.expected)
        throw WrongResult(std::string(name) + " gives wrong values");
    return report.seconds;
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double nanosecondsEach(const std::vector<double>& seconds, std::size_t count)
{
    return median(seconds) * 1e9 / static_cast<double>(count);
}
} // namespace

double processorTime()
{
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    rusage programs;
    getrusage(RUSAGE_CHILDREN, &programs);
    const auto inSeconds = [](const timeval& part) {
        return static_cast<double>(part.tv_sec) + static_cast<double>(part.tv_usec) * 1e-6;
    };
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9 + inSeconds(programs.ru_utime) +
           inSeconds(programs.ru_stime);
}

Side repeated(const Side& side, unsigned int passes)
{
    const auto round = [side, passes](Stopwatch& watch) {
        for (unsigned int i = 0; i < passes; ++i)
        {
            const std::uint64_t digest = side.round(watch);
            if (digest != side.expected)
                return digest;
        }
        return side.expected;
    };
    return {round, side.expected};
}

Comparison::Comparison(benchmark::State& state, bool isQuick) : mState(state), mIsQuick(isQuick)
{
    tidyHeap();
}

std::size_t Comparison::scaled(std::size_t count) const
{
    return mIsQuick ? std::max<std::size_t>(count / kQuickDivisor, 1) : count;
}

void Comparison::run(std::size_t count, const Side& library, const Side& peer)
{
    run(count, library, count, peer);
}

void Comparison::run(std::size_t libraryCount, const Side& library, std::size_t peerCount, const Side& peer)
{
    const double scale = static_cast<double>(peerCount) / static_cast<double>(libraryCount);
    std::vector<double> librarySeconds;
    std::vector<double> peerSeconds;
    std::vector<double> ratios;

    for (auto _ : mState)
    {
        librarySeconds.push_back(secondsOf(library, "the library"));
        peerSeconds.push_back(secondsOf(peer, "the peer"));
        ratios.push_back(librarySeconds.back() / peerSeconds.back() * scale);
        mState.SetIterationTime(librarySeconds.back());
    }
    mState.counters["library"] = nanosecondsEach(librarySeconds, libraryCount);
    mState.counters["peer"] = nanosecondsEach(peerSeconds, peerCount);
    mState.counters["ratio"] = median(ratios);
    mState.counters["lowest"] = *std::min_element(ratios.begin(), ratios.end());
    mState.counters["highest"] = *std::max_element(ratios.begin(), ratios.end());
}

void Comparison::count(double library, double peer)
{
    for (auto _ : mState)
        mState.SetIterationTime(0);
    mState.counters["library"] = library;
    mState.counters["peer"] = peer;
    for (const char* name : {"ratio", "lowest", "highest"})
        mState.counters[name] = library / peer;
}
} // namespace bench
