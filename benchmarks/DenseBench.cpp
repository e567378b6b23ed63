#include "benchmarks/DenseBench.h"

#include "benchmarks/Streams.h"
#include "vumo/data/MemberView.h"

#include <malloc.h>

#include <algorithm>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kElements = 1'000'000;
constexpr unsigned int kOriginMember = 1;

/// The sum of float[3] vectors.
class VectorSum
{
public:
    template <class Vector>
    void add(const Vector& vector)
    {
        for (unsigned int i = 0; i < 3; ++i)
            mSum[i] += static_cast<double>(vector[i]);
    }

    std::uint64_t digest() const
    {
        Digest digest;
        for (const double sum : mSum)
            digest.add(sum);
        return digest.sum();
    }

private:
    double mSum[3] = {};
};

VectorSum sumOfOrigins(const std::vector<Record>& records)
{
    VectorSum sum;
    for (const Record& record : records)
        sum.add(record.origin);
    return sum;
}

VectorSum sumOfOrigins(const Stream& stream)
{
    VectorSum sum;
    for (StreamIterator position = stream.begin(); position.valid(); ++position)
    {
        position->setPositionByMemberIndex(kOriginMember);
        float origin[3];
        std::memcpy(origin, position->asFloat(), sizeof(origin));
        sum.add(origin);
    }
    return sum;
}

/// The same by look-ups.
VectorSum sumOfElementOrigins(const Stream& stream)
{
    VectorSum sum;
    const unsigned int count = stream.elementCount();
    for (unsigned int i = 0; i < count; ++i)
    {
        Handle element = stream.element(i);
        element.setPositionByMemberIndex(kOriginMember);
        float origin[3];
        std::memcpy(origin, element.asFloat(), sizeof(origin));
        sum.add(origin);
    }
    return sum;
}

VectorSum sumOfOrigins(const BlockArray& blocks)
{
    VectorSum sum;
    for (std::size_t i = 0; i < blocks.size(); ++i)
        sum.add(blocks[i].origin);
    return sum;
}

VectorSum sumOfOrigins(const MemberView<const float>& view)
{
    VectorSum sum;
    for (const auto origin : view)
        sum.add(origin);
    return sum;
}

/// The digest of the sum that `sumUp` returns.
template <class SumUp>
Side summingSide(SumUp sumUp, std::uint64_t expected)
{
    const auto round = [sumUp](Stopwatch& watch) {
        VectorSum sum;
        watch.time([&] { sum = sumUp(); });
        return sum.digest();
    };
    return {round, expected};
}
/// The side with an allocator that keeps blocks of any size. Those of a million records it would return to the kernel,
/// whose fresh pages would take longer than the records on them. Each round has a process of its own to do so in.
Side withMemoryKept(const Side& side)
{
    const auto round = [side](Stopwatch& watch) {
        mallopt(M_MMAP_MAX, 0);
        return side.round(watch);
    };
    return {round, side.expected};
}

/// Copies what is in a container one by one.
template <class Container>
Side appending(const Container& source)
{
    const auto round = [&source](Stopwatch& watch) {
        Container copies;
        watch.time([&] {
            for (std::size_t i = 0; i < source.size(); ++i)
                copies.push_back(source[i]);
        });
        return digestOf(copies);
    };
    return {round, digestOf(source)};
}

std::vector<Record> makeUnlabelledRecords(std::size_t count)
{
    std::vector<Record> records = makeRecords(count);
    for (Record& record : records)
        record.label.clear();
    return records;
}
} // namespace

Side denseSetting(const std::vector<Record>& records)
{
    const auto blocks = std::make_shared<const BlockArray>(records);
    const auto round = [blocks](Stopwatch& watch) {
        Stream stream = emptyStream(Storage::kDense);
        Handle handle(recordStructure(), nullptr);
        watch.time([&] {
            for (std::size_t i = 0; i < blocks->size(); ++i)
            {
                handle.pointToData(blocks->data(i), false);
                stream.setElement(static_cast<unsigned int>(i), handle);
            }
        });
        return digestOf(stream);
    };
    return withMemoryKept({round, digestOf(records)});
}

void compareDenseSet(Comparison& comparison)
{
    const std::vector<Record> records = makeUnlabelledRecords(comparison.scaled(kElements));
    comparison.run(records.size(), denseSetting(records), withMemoryKept(appending(records)));
}

void compareDenseSetWithStrings(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const BlockArray blocks(records);
    comparison.run(records.size(), denseSetting(records), withMemoryKept(appending(blocks)));
}

void compareDenseSumByElement(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const Stream stream = streamOf(BlockArray(records), Storage::kDense);
    const std::uint64_t expected = sumOfOrigins(records).digest();
    comparison.run(records.size(), summingSide([&] { return sumOfElementOrigins(stream); }, expected),
                   summingSide([&] { return sumOfOrigins(records); }, expected));
}

void compareDenseSumByIterator(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const Stream stream = streamOf(BlockArray(records), Storage::kDense);
    const std::uint64_t expected = sumOfOrigins(records).digest();
    comparison.run(records.size(), summingSide([&] { return sumOfOrigins(stream); }, expected),
                   summingSide([&] { return sumOfOrigins(records); }, expected));
}

void compareDenseSumByView(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const BlockArray blocks(records);
    const Stream stream = streamOf(blocks, Storage::kDense);
    const std::uint64_t expected = sumOfOrigins(records).digest();
    comparison.run(records.size(),
                   summingSide([&] { return sumOfOrigins(stream.memberView<const float>("Origin")); }, expected),
                   summingSide([&] { return sumOfOrigins(blocks); }, expected));
}

void compareDenseFillByView(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const auto fillStream = [&](Stopwatch& watch) {
        Stream stream = emptyStream(Storage::kDense);
        watch.time([&] {
            stream.setElementRange(0, static_cast<unsigned int>(records.size() - 1));
            const MemberView<float> origins = stream.memberView<float>("Origin");
            for (unsigned int i = 0; i < origins.size(); ++i)
                origins[i].set(records[i].origin);
        });
        return sumOfOrigins(stream).digest();
    };
    const auto fillVector = [&](Stopwatch& watch) {
        std::vector<Record> copies;
        watch.time([&] {
            copies.reserve(records.size());
            for (const Record& record : records)
            {
                copies.emplace_back();
                std::copy_n(record.origin, 3, copies.back().origin);
            }
        });
        return sumOfOrigins(copies).digest();
    };
    const std::uint64_t expected = sumOfOrigins(records).digest();
    comparison.run(records.size(), {fillStream, expected}, {fillVector, expected});
}
} // namespace bench
