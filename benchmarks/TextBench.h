#pragma once

#include "benchmarks/Comparison.h"
#include "benchmarks/Streams.h"
#include "benchmarks/peers/TextPeer.h"

#include <string>
#include <vector>

/// Associations as text in memory: one channel with one stream.
namespace bench
{
void compareTextWriting(Comparison& comparison, Storage storage, const TextWriter& peer);

/// With exact numbers, against `to_chars`.
void compareExactWriting(Comparison& comparison, Storage storage);

void compareTextReading(Comparison& comparison, const TextReader& peer);

/// The library's sides, for other workloads to share. They keep what they are given.
Side rawWriting(const vumo::Data::Associations& associations, const std::string& expected);
Side rawReading(const std::string& text, const std::vector<Record>& expected);
} // namespace bench
