#include "benchmarks/MappedBench.h"

#include "benchmarks/Streams.h"
#include "vumo/data/IndexString.h"

#include <numeric>
#include <type_traits>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kElements = 200'000;

/// The disorders in which elements arrive, and in which they are looked up.
constexpr unsigned int kArrival = 1;
constexpr unsigned int kLookup = 2;

using NumericMap = BlockMap<unsigned int>;
using TextMap = BlockMap<std::string>;

/// Records as they arrive, and the numbers under which they are stored: the k-th record under the k-th number.
struct Input
{
    Input(std::vector<Record> theRecords, std::vector<unsigned int> theNumbers)
        : records(std::move(theRecords)),
          blocks(records),
          numbers(std::move(theNumbers))
    {
    }

    std::size_t size() const { return numbers.size(); }

    /// The records in the order of their numbers.
    std::vector<Record> sorted() const
    {
        std::vector<Record> result(records.size());
        for (std::size_t k = 0; k < records.size(); ++k)
            result[numbers[k]] = records[k];
        return result;
    }

    /// The texts of the numbers, for streams that are indexed by text.
    std::vector<std::string> texts() const
    {
        std::vector<std::string> result;
        for (const unsigned int number : numbers)
            result.push_back(textIndex(number));
        return result;
    }

    std::vector<Record> records;
    BlockArray blocks;
    std::vector<unsigned int> numbers;
};

using SharedInput = std::shared_ptr<const Input>;

SharedInput shuffledInput(const Comparison& comparison)
{
    const std::size_t count = comparison.scaled(kElements);
    return std::make_shared<Input>(makeRecords(count), shuffledNumbers(count, kArrival));
}

SharedInput ascendingInput(const std::vector<Record>& records)
{
    std::vector<unsigned int> numbers(records.size());
    std::iota(numbers.begin(), numbers.end(), 0U);
    return std::make_shared<Input>(records, std::move(numbers));
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

/// Sets the blocks at the numbers, or at the texts that `indices` holds.
template <class AnyIndex>
void setElements(const Input& input, const std::vector<AnyIndex>& indices, Stream& stream)
{
    using Key = std::conditional_t<std::is_same_v<AnyIndex, std::string>, IndexString, unsigned int>;
    Handle handle(recordStructure(), nullptr);
    for (std::size_t k = 0; k < input.size(); ++k)
    {
        handle.pointToData(input.blocks.data(k), false);
        stream.setElement(Key(indices[k]), handle);
    }
}

Side inserting(const SharedInput& input)
{
    const auto round = [input](Stopwatch& watch) {
        Stream stream = emptyStream(Storage::kMapped);
        watch.time([&] { setElements(*input, input->numbers, stream); });
        return digestOf(stream);
    };
    return {round, digestOf(input->sorted())};
}

Side insertingAtOnce(const SharedInput& input)
{
    const auto round = [input](Stopwatch& watch) {
        Stream stream = emptyStream(Storage::kMapped);
        const ElementView elements(recordStructure(), input->blocks.data(0), static_cast<unsigned int>(input->size()));
        watch.time([&] { stream.setElements(input->numbers.data(), elements); });
        return digestOf(stream);
    };
    return {round, digestOf(input->sorted())};
}

/// `insert` puts a block into the map under its number.
template <class Insert>
Side blockMapInserting(const SharedInput& input, Insert insert)
{
    const auto round = [input, insert](Stopwatch& watch) {
        NumericMap blocks;
        watch.time([&] {
            for (std::size_t k = 0; k < input->size(); ++k)
                insert(blocks.map(), input->numbers[k], duplicate(input->blocks[k]));
        });
        return blocks.digest();
    };
    return {round, digestOf(input->sorted())};
}

void append(NumericMap::Map& map, unsigned int i, std::unique_ptr<char[]> block)
{
    map.emplace_hint(map.end(), i, std::move(block));
}

Stream streamOf(const Input& input)
{
    Stream stream = emptyStream(Storage::kMapped);
    setElements(input, input.numbers, stream);
    return stream;
}

void fill(const Input& input, NumericMap& blocks)
{
    for (std::size_t k = 0; k < input.size(); ++k)
        blocks.map().emplace(input.numbers[k], duplicate(input.blocks[k]));
}

/// Times the sum of what `idAt` gives for each of the indices.
template <class AnyIndex, class IdAt>
Side lookingUp(const std::vector<AnyIndex>& indices, IdAt idAt, std::uint64_t expected)
{
    const auto round = [&indices, idAt](Stopwatch& watch) {
        std::uint64_t sum = 0;
        watch.time([&] {
            for (const AnyIndex& index : indices)
                sum += static_cast<std::uint64_t>(idAt(index));
        });
        return sum;
    };
    return {round, expected};
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
    comparison.run(input->size(), inserting(input), blockMapInserting(input, emplace));
}

void compareAscendingInsert(Comparison& comparison)
{
    const SharedInput input = ascendingInput(makeRecords(comparison.scaled(kElements)));
    comparison.run(input->size(), inserting(input), blockMapInserting(input, append));
}

void compareBulkInsert(Comparison& comparison)
{
    const SharedInput input = ascendingInput(makeRecords(comparison.scaled(kElements)));
    comparison.run(input->size(), insertingAtOnce(input), blockMapInserting(input, append));
}

void compareShuffledLookup(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const Stream stream = streamOf(*input);
    NumericMap blocks;
    fill(*input, blocks);

    const auto idInStream = [&](unsigned int number) {
        Handle handle = stream.element(number);
        return idOf(handle);
    };
    const auto idInMap = [&](unsigned int number) { return blockAt(blocks.map().find(number)->second.get()).id; };
    const std::vector<unsigned int> numbers = shuffledNumbers(input->size(), kLookup);
    const std::uint64_t expected = sumOfIds(input->records);
    comparison.run(numbers.size(), lookingUp(numbers, idInStream, expected), lookingUp(numbers, idInMap, expected));
}

void compareBulkLookup(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const Stream stream = streamOf(*input);
    NumericMap blocks;
    fill(*input, blocks);
    const std::vector<unsigned int> numbers = shuffledNumbers(input->size(), kLookup);

    const auto idInMap = [&](unsigned int number) { return blockAt(blocks.map().find(number)->second.get()).id; };
    const auto getAll = [&](Stopwatch& watch) {
        std::vector<std::int32_t> ids(numbers.size());
        watch.time([&] {
            stream.getMemberValues("ID", numbers.data(), static_cast<unsigned int>(numbers.size()), ids.data());
        });
        return std::accumulate(ids.begin(), ids.end(), std::uint64_t(0));
    };
    const std::uint64_t expected = sumOfIds(input->records);
    comparison.run(numbers.size(), {getAll, expected}, lookingUp(numbers, idInMap, expected));
}

void compareIteration(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const Stream stream = streamOf(*input);
    NumericMap blocks;
    fill(*input, blocks);

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
    const std::uint64_t expected = sumOfIds(input->records);
    comparison.run(input->size(), {walk, expected}, {loop, expected});
}

void compareTextInsert(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const std::vector<std::string> texts = input->texts();
    const auto setAll = [&](Stopwatch& watch) {
        Stream stream = emptyTextStream();
        watch.time([&] { setElements(*input, texts, stream); });
        return digestOf(stream);
    };
    const auto emplaceAll = [&](Stopwatch& watch) {
        TextMap map;
        watch.time([&] {
            for (std::size_t k = 0; k < texts.size(); ++k)
                map.map().emplace(texts[k], duplicate(input->blocks[k]));
        });
        return map.digest();
    };
    const std::uint64_t expected = textDigest(input->sorted());
    comparison.run(input->size(), {setAll, expected}, {emplaceAll, expected});
}

void compareTextLookup(Comparison& comparison)
{
    const SharedInput input = shuffledInput(comparison);
    const std::vector<std::string> arrived = input->texts();
    Stream stream = emptyTextStream();
    setElements(*input, arrived, stream);
    TextMap map;
    for (std::size_t k = 0; k < arrived.size(); ++k)
        map.map().emplace(arrived[k], duplicate(input->blocks[k]));

    const auto idInStream = [&](const std::string& text) {
        Handle handle = stream.element(IndexString(text));
        return idOf(handle);
    };
    const auto idInMap = [&](const std::string& text) { return blockAt(map.map().find(text)->second.get()).id; };
    std::vector<std::string> texts;
    for (const unsigned int number : shuffledNumbers(input->size(), kLookup))
        texts.push_back(textIndex(number));
    const std::uint64_t expected = sumOfIds(input->records);
    comparison.run(texts.size(), lookingUp(texts, idInStream, expected), lookingUp(texts, idInMap, expected));
}
} // namespace bench
