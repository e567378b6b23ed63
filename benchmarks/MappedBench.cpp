#include "benchmarks/MappedBench.h"

#include "benchmarks/Streams.h"
#include "vumo/data/IndexString.h"

#include <numeric>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kElements = 200'000;

using NumericMap = BlockMap<unsigned int>;
using TextMap = std::map<std::string, Record>;

/// Records and the order in which they are set and looked up; the i-th record always goes to the number i.
struct Input
{
    Input(const std::vector<Record>& theRecords, const std::vector<unsigned int>& theOrder)
        : records(theRecords),
          blocks(theRecords),
          order(theOrder)
    {
    }

    std::vector<Record> records;
    BlockArray blocks;
    std::vector<unsigned int> order;
};

using SharedInput = std::shared_ptr<const Input>;

SharedInput shuffledInput(const Comparison& comparison)
{
    const std::size_t count = comparison.scaled(kElements);
    return std::make_shared<Input>(makeRecords(count), shuffledIndices(count));
}

SharedInput ascendingInput(const std::vector<Record>& records)
{
    std::vector<unsigned int> order(records.size());
    std::iota(order.begin(), order.end(), 0U);
    return std::make_shared<Input>(records, order);
}

std::vector<std::string> textIndices(std::size_t count)
{
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < count; ++i)
        texts.push_back(textIndex(static_cast<unsigned int>(i)));
    return texts;
}

std::uint64_t sumOfIds(const std::vector<Record>& records)
{
    std::uint64_t sum = 0;
    for (const Record& record : records)
        sum += static_cast<std::uint64_t>(record.id);
    return sum;
}

std::int32_t idOf(Handle& handle)
{
    std::int32_t id; // the first member, at which every handle starts
    std::memcpy(&id, handle.asInt32(), sizeof(id));
    return id;
}

/// Sets the blocks in the input's order. `indexOf` makes an index of each number.
template <class IndexOf>
void setElements(const Input& input, Stream& stream, IndexOf indexOf)
{
    Handle handle(recordStructure(), nullptr);
    for (const unsigned int i : input.order)
    {
        handle.pointToData(input.blocks.data(i), false);
        stream.setElement(indexOf(i), handle);
    }
}

Index numericIndex(unsigned int i)
{
    return Index(i);
}

Side inserting(const SharedInput& input)
{
    const auto round = [input](Stopwatch& watch) {
        Stream stream = emptyStream(Storage::kMapped);
        watch.time([&] { setElements(*input, stream, numericIndex); });
        return digestOf(stream);
    };
    return {round, digestOf(input->records)};
}

/// `insert` puts a block into the map under its number.
template <class Insert>
Side blockMapInserting(const SharedInput& input, Insert insert)
{
    const auto round = [input, insert](Stopwatch& watch) {
        NumericMap blocks;
        watch.time([&] {
            for (const unsigned int i : input->order)
                insert(blocks.map(), i, duplicate(input->blocks[i]));
        });
        return blocks.digest();
    };
    return {round, digestOf(input->records)};
}

void fill(const Input& input, NumericMap& blocks)
{
    for (const unsigned int i : input.order)
        blocks.map().emplace(i, duplicate(input.blocks[i]));
}

/// With the texts of the numbers as indices.
std::uint64_t textDigest(const std::vector<Record>& records)
{
    Digest digest;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        digest.add(std::string_view(textIndex(static_cast<unsigned int>(i))));
        digest.addRecord(records[i]);
    }
    return digest.sum();
}

std::uint64_t textDigest(const TextMap& records)
{
    Digest digest;
    for (const auto& [index, record] : records)
    {
        digest.add(std::string_view(index));
        digest.addRecord(record);
    }
    return digest.sum();
}

Stream emptyTextStream()
{
    Stream stream = emptyStream(Storage::kMapped);
    stream.setIndexType(IndexString::myTypeName);
    return stream;
}
} // namespace

Side ascendingInserting(const std::vector<Record>& records)
{
    return inserting(ascendingInput(records));
}

void compareShuffledInsert(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const auto emplace = [](NumericMap::Map& map, unsigned int i, std::unique_ptr<char[]> block) {
        map.emplace(i, std::move(block));
    };
    comparison.run(input->order.size(), inserting(input), blockMapInserting(input, emplace));
}

void compareAscendingInsert(Comparison& comparison)
{
    const SharedInput input = ascendingInput(makeRecords(comparison.scaled(kElements)));
    const auto append = [](NumericMap::Map& map, unsigned int i, std::unique_ptr<char[]> block) {
        map.emplace_hint(map.end(), i, std::move(block));
    };
    comparison.run(input->order.size(), inserting(input), blockMapInserting(input, append));
}

void compareShuffledLookup(Comparison& comparison)
{
    const SharedInput shared = shuffledInput(comparison);
    const Input& input = *shared;
    Stream stream = emptyStream(Storage::kMapped);
    setElements(input, stream, numericIndex);
    NumericMap blocks;
    fill(input, blocks);

    const auto look = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const unsigned int i : input.order)
            {
                Handle handle = stream.element(i);
                sum += static_cast<std::uint64_t>(idOf(handle));
            }
        });
        return sum;
    };
    const auto find = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const unsigned int i : input.order)
                sum += static_cast<std::uint64_t>(blockAt(blocks.map().find(i)->second.get()).id);
        });
        return sum;
    };
    const std::uint64_t expected = sumOfIds(input.records);
    comparison.run(input.order.size(), {look, expected}, {find, expected});
}

void compareIteration(Comparison& comparison)
{
    const SharedInput shared = shuffledInput(comparison);
    const Input& input = *shared;
    Stream stream = emptyStream(Storage::kMapped);
    setElements(input, stream, numericIndex);
    NumericMap blocks;
    fill(input, blocks);

    const auto walk = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (StreamIterator position = stream.begin(); position.valid(); ++position)
                sum += static_cast<std::uint64_t>(idOf(*position));
        });
        return sum;
    };
    const auto loop = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const auto& entry : blocks.map())
                sum += static_cast<std::uint64_t>(blockAt(entry.second.get()).id);
        });
        return sum;
    };
    const std::uint64_t expected = sumOfIds(input.records);
    comparison.run(input.order.size(), {walk, expected}, {loop, expected});
}

void compareTextInsert(Comparison& comparison)
{
    const SharedInput shared = shuffledInput(comparison);
    const Input& input = *shared;
    const std::vector<std::string> texts = textIndices(input.order.size());

    const auto setAll = [&](Stopwatch& watch) {
        Stream stream = emptyTextStream();
        watch.time([&] { setElements(input, stream, [&](unsigned int i) { return Index(IndexString(texts[i])); }); });
        return digestOf(stream);
    };
    const auto emplaceAll = [&](Stopwatch& watch) {
        TextMap map;
        watch.time([&] {
            for (const unsigned int i : input.order)
                map.emplace(texts[i], input.records[i]);
        });
        return textDigest(map);
    };
    const std::uint64_t expected = textDigest(input.records);
    comparison.run(input.order.size(), {setAll, expected}, {emplaceAll, expected});
}

void compareTextLookup(Comparison& comparison)
{
    const SharedInput shared = shuffledInput(comparison);
    const Input& input = *shared;
    const std::vector<std::string> texts = textIndices(input.order.size());
    Stream stream = emptyTextStream();
    setElements(input, stream, [&](unsigned int i) { return Index(IndexString(texts[i])); });
    TextMap map;
    for (const unsigned int i : input.order)
        map.emplace(texts[i], input.records[i]);

    const auto look = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const unsigned int i : input.order)
            {
                Handle handle = stream.element(IndexString(texts[i]));
                sum += static_cast<std::uint64_t>(idOf(handle));
            }
        });
        return sum;
    };
    const auto find = [&](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const unsigned int i : input.order)
                sum += static_cast<std::uint64_t>(map.find(texts[i])->second.id);
        });
        return sum;
    };
    const std::uint64_t expected = sumOfIds(input.records);
    comparison.run(input.order.size(), {look, expected}, {find, expected});
}
} // namespace bench
