// Runs the workloads, all of them or those whose names hold one of the given regular expressions, and prints a table
// of the library's time and that of a peer for each:
//
//     vumo_bench [--quick] [--benchmark_...] [NAME...]
//
// Fails when a result is wrong, whatever the time. A quick run checks the results on small workloads; its times mean
// little.

#include "benchmarks/Comparison.h"
#include "benchmarks/Processors.h"
#include "benchmarks/Records.h"
#include "benchmarks/TableReporter.h"
#include "benchmarks/Workloads.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <string>

namespace
{
constexpr int kQuickRounds = 1;

/// Gives the allocator at once the threshold that it learns by itself in a process that has freed large blocks, so
/// that figures do not depend on the workloads before; and has it keep what a round has freed, whose return to the
/// kernel would hit now this side, now that.
void fixThresholds()
{
    constexpr int kLargestLearnt = 32 << 20;
    mallopt(M_MMAP_THRESHOLD, kLargestLearnt);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
}

void runWorkload(const bench::Workload& workload, bool isQuick, benchmark::State& state)
{
    bench::Comparison comparison(state, isQuick);
    try
    {
        workload.run(comparison);
    }
    catch (const bench::WrongResult& error)
    {
        state.SkipWithError(error.what());
    }
}

void registerWorkloads(bool isQuick)
{
    for (const bench::Workload& workload : bench::workloads())
    {
        benchmark::RegisterBenchmark(
            workload.name, [&workload, isQuick](benchmark::State& state) { runWorkload(workload, isQuick, state); })
            ->Iterations(isQuick ? kQuickRounds : workload.rounds)
            ->UseManualTime();
    }
}

/// One regular expression for any of the names; all workloads when there is none.
std::string filterOf(char** first, char** last)
{
    std::string filter;
    for (; first != last; ++first)
        filter += (filter.empty() ? "" : "|") + std::string(*first);
    return filter.empty() ? "." : filter;
}

int conclude(const bench::TableReporter& reporter, bool isQuick)
{
    if (reporter.workloadCount() == 0)
    {
        std::fprintf(stderr, "No workload has such a name.\n");
        return 1;
    }
    if (!reporter.isRight())
    {
        std::fprintf(stderr, "A result is wrong.\n");
        return 1;
    }
    if (isQuick)
        std::printf("\n%d workloads, all results right; the times of a quick run mean little.\n",
                    reporter.workloadCount());
    else
        std::printf("\n%d workloads, all results right; %d missed their goals.\n", reporter.workloadCount(),
                    reporter.missedCount());
    return 0;
}
} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    char** const last = std::remove(argv + 1, argv + argc, std::string("--quick"));
    const bool isQuick = last != argv + argc;

    bench::pinTo(bench::allowedProcessors().back());
    fixThresholds();
    registerWorkloads(isQuick);
    bench::TableReporter reporter;
    if (std::any_of(argv + 1, last, [](const char* argument) { return argument[0] == '-'; }))
    {
        std::fprintf(stderr, "usage: vumo_bench [--quick] [--benchmark_...] [NAME...]\n");
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks(&reporter, filterOf(argv + 1, last));
    benchmark::Shutdown();
    return conclude(reporter, isQuick);
}
