#pragma once

#include "benchmarks/Blocks.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Stream.h"
#include "vumo/data/Structure.h"

#include <cstdint>
#include <iosfwd>
#include <memory>

/// The library's side of the workloads.
namespace bench
{
enum class Storage
{
    kMapped,
    kDense
};

/// The record as the library knows it: registered, and laid out like a `Block`.
const vumo::Data::Structure& recordStructure();

vumo::Data::Stream emptyStream(Storage storage);

/// The blocks at the numbers from 0.
vumo::Data::Stream streamOf(const BlockArray& blocks, Storage storage);

/// The stream alone in one channel.
vumo::Data::Associations associationsOf(const vumo::Data::Stream& stream);

/// That stream.
const vumo::Data::Stream& streamIn(const vumo::Data::Associations& associations);

/// Equal to the digest of the records that the stream should hold; text indices count as their texts.
std::uint64_t digestOf(const vumo::Data::Stream& stream);

/// In the format "raw". Throws `WrongResult` when the library refuses.
void writeRaw(const vumo::Data::Associations& associations, std::ostream& out);
std::unique_ptr<vumo::Data::Associations> readRaw(std::istream& in);

/// The text of recordStructure(), and a look at what a reader makes of it.
std::string recordStructureText();
void readRawStructure(std::istream& in);
} // namespace bench
