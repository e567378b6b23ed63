#pragma once

#include "benchmarks/Comparison.h"

#include <vector>

namespace bench
{
/// A workload and what is wanted of it.
struct Workload
{
    /// By which it is selected.
    const char* name;

    /// What is done, and against whom.
    const char* what;
    const char* peer;

    /// The unit of both sides' figures.
    const char* unit;

    /// The ratio library / peer that must hold, and the one that we are after; 0 where none is set.
    double goal;
    double moonshot;

    int rounds;
    void (*run)(Comparison& comparison);
};

/// All workloads, in the order of the table.
const std::vector<Workload>& workloads();
} // namespace bench
