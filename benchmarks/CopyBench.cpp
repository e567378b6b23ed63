#include "benchmarks/CopyBench.h"

#include "benchmarks/Streams.h"

#include <optional>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr unsigned int kChannels = 10;
constexpr unsigned int kStreamsPerChannel = 10;
constexpr unsigned int kStreams = kChannels * kStreamsPerChannel;
constexpr std::size_t kElementsPerStream = 10'000;

Channel makeChannel(unsigned int number, const BlockArray& blocks, Storage storage)
{
    Channel channel("channel " + std::to_string(number));
    for (unsigned int i = 0; i < kStreamsPerChannel; ++i)
    {
        Stream stream = streamOf(blocks, storage);
        channel.setDataStream(stream);
        channel.renameDataStream(stream.name(), "stream " + std::to_string(i));
    }
    return channel;
}

Associations makeAssociations(const BlockArray& blocks, Storage storage)
{
    Associations associations;
    for (unsigned int i = 0; i < kChannels; ++i)
        associations.setChannel(makeChannel(i, blocks, storage));
    return associations;
}

/// Of all streams.
std::uint64_t digestOfAll(const Associations& associations)
{
    Digest digest;
    for (unsigned int i = 0; i < associations.channelCount(); ++i)
    {
        for (unsigned int j = 0; j < associations[i]->dataStreamCount(); ++j)
            digest.add(digestOf(*associations[i]->dataStream(j)));
    }
    return digest.sum();
}

template <class Records>
std::uint64_t digestOfAll(const std::vector<Records>& streams)
{
    Digest digest;
    for (const Records& records : streams)
        digest.add(digestOf(records));
    return digest.sum();
}

bool shareElements(const Associations& a, const Associations& b)
{
    return a[0]->dataStream(0U)->element(0).data() == b[0]->dataStream(0U)->element(0).data();
}

/// Compares with the copy of a vector of `Records`, which hold the elements of a stream each.
template <class Records>
void compareCopy(Comparison& comparison, Storage storage)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElementsPerStream));
    const Associations associations = makeAssociations(BlockArray(records), storage);
    const std::vector<Records> streams(kStreams, Records(records));

    const auto makeUnique = [&](Stopwatch& watch) {
        Associations copy(associations);
        watch.time([&] { copy.makeUnique(); });
        if (shareElements(copy, associations))
            throw WrongResult("the copy shares elements");
        return digestOfAll(copy);
    };
    const auto copyVector = [&](Stopwatch& watch) {
        std::optional<std::vector<Records>> copies;
        watch.time([&] { copies.emplace(streams); });
        return digestOfAll(*copies);
    };
    const std::uint64_t expected = digestOfAll(streams);
    comparison.run(kStreams * records.size(), {makeUnique, expected}, {copyVector, expected});
}

class MapOfBlocks : public std::map<unsigned int, OwnedBlock>
{
public:
    explicit MapOfBlocks(const std::vector<Record>& records)
    {
        const BlockArray blocks(records);
        for (std::size_t i = 0; i < blocks.size(); ++i)
            emplace_hint(end(), static_cast<unsigned int>(i), blocks[i]);
    }
};

std::uint64_t digestOf(const MapOfBlocks& blocks)
{
    Digest digest;
    for (const auto& [index, owned] : blocks)
    {
        digest.add(index);
        digest.addRecord(owned.block());
    }
    return digest.sum();
}
} // namespace

void compareMappedCopy(Comparison& comparison)
{
    compareCopy<MapOfBlocks>(comparison, Storage::kMapped);
}

void compareDenseCopy(Comparison& comparison)
{
    compareCopy<BlockArray>(comparison, Storage::kDense);
}
} // namespace bench
