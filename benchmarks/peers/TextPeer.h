#pragma once

#include "benchmarks/Comparison.h"
#include "benchmarks/Records.h"

#include <string>
#include <vector>

namespace bench
{
/// Another way to write records to a text in memory.
struct TextWriter
{
    /// The watch times the writing alone.
    std::string (*write)(const std::vector<Record>& records, Stopwatch& watch);

    /// Says whether the text holds the records.
    bool (*isRight)(const std::string& text, const std::vector<Record>& records);
};

/// Another way to read records from a text in memory.
struct TextReader
{
    /// The text that it reads.
    std::string (*textOf)(const std::vector<Record>& records);

    /// Returns the digest of what was read. The watch times the reading, with the release of what is only needed for
    /// it, but not the release of the records.
    std::uint64_t (*read)(const std::string& text, Stopwatch& watch);
};
} // namespace bench
