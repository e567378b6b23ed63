#include "benchmarks/TableReporter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace bench
{
namespace
{
constexpr char kFormat[] = "| %-28s | %-42s | %-32s | %12s | %12s | %6s | %-14s | %5s | %8s | %-16s |\n";

constexpr char kMissed[] = "misses goal";

void printLine(const char* name, const char* what, const char* peerName, const std::string& library,
               const std::string& peer, const std::string& ratio, const std::string& spread, const std::string& goal,
               const std::string& moonshot, const std::string& verdict)
{
    std::printf(kFormat, name, what, peerName, library.c_str(), peer.c_str(), ratio.c_str(), spread.c_str(),
                goal.c_str(), moonshot.c_str(), verdict.c_str());
    std::fflush(stdout);
}

std::string format(const char* pattern, double value)
{
    char text[32];
    std::snprintf(text, sizeof(text), pattern, value);
    return text;
}

std::string withUnit(double value, const char* unit)
{
    return format(value < 100 ? "%.1f " : "%.0f ", value) + unit;
}

std::string wanted(double ratio)
{
    return ratio == 0 ? "" : format("%.2f", ratio);
}

/// Ratios are wanted to two digits after the point, so they are judged to two digits, too.
bool reaches(double ratio, double wantedRatio)
{
    return std::round(ratio * 100) <= std::round(wantedRatio * 100);
}

std::string verdictOf(const Workload& workload, double ratio)
{
    if (workload.goal == 0)
        return "";
    if (!reaches(ratio, workload.goal))
        return kMissed;
    return reaches(ratio, workload.moonshot) ? "moonshot" : "goal";
}

const Workload& workloadOf(const std::string& name)
{
    const auto found = std::find_if(workloads().begin(), workloads().end(),
                                    [&](const Workload& workload) { return name == workload.name; });
    return *found;
}
} // namespace

bool TableReporter::ReportContext(const Context&)
{
    printLine("name", "workload", "peer", "library", "peer's", "ratio", "spread", "goal", "moonshot", "verdict");
    printLine("---", "---", "---", "---:", "---:", "---:", "---", "---:", "---:", "---");
    return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs)
        report(workloadOf(run.run_name.function_name), run);
}

void TableReporter::report(const Workload& workload, const Run& run)
{
    ++mWorkloadCount;
    if (run.error_occurred)
    {
        mIsRight = false;
        printLine(workload.name, workload.what, workload.peer, "", "", "", "", "", "", "WRONG RESULT");
        std::fprintf(stderr, "%s: %s\n", workload.name, run.error_message.c_str());
        return;
    }
    const auto figure = [&](const char* name) { return run.counters.at(name).value; };
    const double ratio = figure("ratio");
    const std::string verdict = verdictOf(workload, ratio);
    if (verdict == kMissed)
        ++mMissedCount;
    printLine(workload.name, workload.what, workload.peer, withUnit(figure("library"), workload.unit),
              withUnit(figure("peer"), workload.unit), format("%.2f", ratio),
              format("%.2f", figure("lowest")) + " to " + format("%.2f", figure("highest")), wanted(workload.goal),
              wanted(workload.moonshot), verdict);
}
} // namespace bench
