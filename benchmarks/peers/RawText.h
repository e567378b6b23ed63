#pragma once

#include "benchmarks/peers/TextPeer.h"

/// The library's own text, written and read by hand.
namespace bench
{
/// What stands before and after the records.
constexpr char kRawHead[] = "channel\nname vertex\nstream\nname points\nindexType numeric\nstructure Record\n";
constexpr char kRawTail[] = "endStream\nendChannel\nendAssociations\n";

/// `operator<<` in a loop, with default formatting.
TextWriter ostreamWriter();

/// `std::from_chars` in a loop, which fills a map of blocks.
TextReader fromCharsReader();

/// The text of associations with one channel and one stream, as the library must write it.
std::string rawText(const std::vector<Record>& records);
} // namespace bench
