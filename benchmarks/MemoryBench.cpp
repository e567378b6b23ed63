#include "benchmarks/MemoryBench.h"

#include "benchmarks/Streams.h"
#include "vumo/data/IndexString.h"

#include <malloc.h>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kElements = 200'000;

/// Bytes in use, with the allocator's own.
std::size_t memoryInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// What each of `count` elements takes of what `make` returns. One that was made before it uses up what the library
/// keeps of objects that are gone: their reference counters.
template <class Make>
double bytesEach(std::size_t count, Make make)
{
    const auto kept = make();
    const std::size_t before = memoryInUse();
    const auto made = make();
    const std::size_t after = memoryInUse();
    return static_cast<double>(after - before) / static_cast<double>(count);
}

template <class Key, class KeyOf>
std::unique_ptr<BlockMap<Key>> makeBlockMap(const BlockArray& blocks, KeyOf keyOf)
{
    auto map = std::make_unique<BlockMap<Key>>();
    for (std::size_t i = 0; i < blocks.size(); ++i)
        map->map().emplace_hint(map->map().end(), keyOf(static_cast<unsigned int>(i)), duplicate(blocks[i]));
    return map;
}

Stream makeTextStream(const BlockArray& blocks)
{
    Stream stream = emptyStream(Storage::kMapped);
    stream.setIndexType(IndexString::myTypeName);
    Handle handle(recordStructure(), nullptr);
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        handle.pointToData(blocks.data(i), false);
        stream.setElement(IndexString(textIndex(static_cast<unsigned int>(i))), handle);
    }
    return stream;
}

/// Measures what both make for each block.
template <class MakeLibrary, class MakePeer, class DigestOfPeer>
void compareBytes(Comparison& comparison, const BlockArray& blocks, MakeLibrary makeLibrary, MakePeer makePeer,
                  DigestOfPeer digestOfPeer)
{
    comparison.count(bytesEach(blocks.size(), makeLibrary), bytesEach(blocks.size(), makePeer));
    if (digestOf(makeLibrary()) != digestOfPeer(*makePeer()))
        throw WrongResult("the library and the peer hold different records");
}
} // namespace

void compareNumericMemory(Comparison& comparison)
{
    const BlockArray blocks(makeRecords(comparison.scaled(kElements)));
    const auto makeStream = [&] { return streamOf(blocks, Storage::kMapped); };
    const auto makeMap = [&] { return makeBlockMap<unsigned int>(blocks, [](unsigned int i) { return i; }); };
    compareBytes(comparison, blocks, makeStream, makeMap, [](const auto& map) { return map.digest(); });
}

void compareTextMemory(Comparison& comparison)
{
    const BlockArray blocks(makeRecords(comparison.scaled(kElements)));
    const auto makeStream = [&] { return makeTextStream(blocks); };
    const auto makeMap = [&] { return makeBlockMap<std::string>(blocks, textIndex); };
    compareBytes(comparison, blocks, makeStream, makeMap, [](const auto& map) { return map.digest(); });
}

void compareDenseMemory(Comparison& comparison)
{
    const BlockArray blocks(makeRecords(comparison.scaled(kElements)));
    const auto makeStream = [&] { return streamOf(blocks, Storage::kDense); };
    const auto makeArray = [&] { return std::make_unique<BlockArray>(blocks); };
    compareBytes(comparison, blocks, makeStream, makeArray, [](const auto& array) { return digestOf(array); });
}
} // namespace bench
