#pragma once

#include "benchmarks/peers/TextPeer.h"

/// The library's own text, written by hand: each line is made in place and handed to a string stream, flushed as the
/// format wants it.
namespace bench
{
/// Six significant digits, by a conversion that suits the numbers of the records and no others.
TextWriter loopWriter();

/// By `std::to_chars`: each float has the fewest digits that read back to it.
std::string exactRawText(const std::vector<Record>& records, Stopwatch& watch);
} // namespace bench
