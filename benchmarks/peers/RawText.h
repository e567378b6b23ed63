#pragma once

#include "benchmarks/peers/TextPeer.h"

/// The library's own text, written and read by hand.
namespace bench
{
/// `operator<<` in a loop, with default formatting.
TextWriter ostreamWriter();

/// The same text by `std::to_chars`, each line flushed as the format wants it: each float has the fewest digits that
/// read back to it.
std::string exactRawText(const std::vector<Record>& records, Stopwatch& watch);

/// `std::from_chars` in a loop, which fills a map of blocks.
TextReader fromCharsReader();

/// The text of associations with one channel and one stream, as the library must write it.
std::string rawText(const std::vector<Record>& records);
} // namespace bench
