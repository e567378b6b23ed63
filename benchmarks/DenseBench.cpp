#include "benchmarks/DenseBench.h"

#include "benchmarks/Streams.h"

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
    void add(const float* vector)
    {
        for (int i = 0; i < 3; ++i)
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
    return {round, digestOf(records)};
}

void compareDenseSet(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const auto pushAll = [&](Stopwatch& watch) {
        std::vector<Record> copies;
        watch.time([&] {
            for (const Record& record : records)
                copies.push_back(record);
        });
        return digestOf(copies);
    };
    comparison.run(records.size(), denseSetting(records), {pushAll, digestOf(records)});
}

void compareDenseSumByIterator(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const Stream stream = streamOf(BlockArray(records), Storage::kDense);
    const std::uint64_t expected = sumOfOrigins(records).digest();
    comparison.run(records.size(), summingSide([&] { return sumOfOrigins(stream); }, expected),
                   summingSide([&] { return sumOfOrigins(records); }, expected));
}
} // namespace bench
