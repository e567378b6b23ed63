#pragma once

#include "benchmarks/Workloads.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace bench
{
/// Prints one line of a Markdown table for each workload that has run.
class TableReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Says whether all results were right.
    bool isRight() const { return mIsRight; }

    /// Of the workloads that ran, how many there were and how many missed their goals.
    int workloadCount() const { return mWorkloadCount; }
    int missedCount() const { return mMissedCount; }

private:
    void report(const Workload& workload, const Run& run);

    bool mIsRight = true;
    int mWorkloadCount = 0;
    int mMissedCount = 0;
};
} // namespace bench
