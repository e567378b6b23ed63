#include "benchmarks/VectorBench.h"

#include "benchmarks/Records.h"
#include "benchmarks/peers/MeshProperty.h"
#include "vumo/data/MemberView.h"
#include "vumo/data/Stream.h"
#include "vumo/foundation/Ref.h"

#include <numeric>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kVertices = 1'000'000;

/// Three coordinates for each vertex.
std::vector<float> makeCoordinates(std::size_t vertices)
{
    std::vector<float> coordinates(3 * vertices);
    std::iota(coordinates.begin(), coordinates.end(), 0.5F);
    return coordinates;
}

/// A stream with nothing but a float[3] in each element.
class VectorStream
{
public:
    explicit VectorStream(std::size_t vertices) : mStructure(new Structure("Vector")), mStream(*mStructure, "normals")
    {
        mStructure->addMember(Member::kFloat, 3, "Normal");
        mStream.useDenseStorage(true);
        mStream.setElementRange(0, static_cast<unsigned int>(vertices - 1));
    }

    void fill(const std::vector<float>& coordinates)
    {
        const float* next = coordinates.data();
        for (const auto normal : mStream.memberView<float>("Normal"))
        {
            normal.set(next);
            next += 3;
        }
    }

    Sum3 sum() const { return sumOf(mStream); }

    /// Times a copy and returns its sum.
    Sum3 copy(Stopwatch& watch) const
    {
        Stream copied(mStream);
        watch.time([&] { copied.makeUnique(); });
        return sumOf(copied);
    }

private:
    static Sum3 sumOf(const Stream& stream)
    {
        Sum3 sum{};
        for (const auto normal : stream.memberView<const float>("Normal"))
        {
            for (unsigned int i = 0; i < 3; ++i)
                sum[i] += static_cast<double>(normal[i]);
        }
        return sum;
    }

    vumo::Ref<Structure> mStructure;
    Stream mStream;
};

std::uint64_t digestOf(const Sum3& sum)
{
    Digest digest;
    for (const double coordinate : sum)
        digest.add(coordinate);
    return digest.sum();
}

std::uint64_t expectedSum(const std::vector<float>& coordinates)
{
    Sum3 sum{};
    for (std::size_t i = 0; i < coordinates.size(); ++i)
        sum[i % 3] += static_cast<double>(coordinates[i]);
    return digestOf(sum);
}

/// `work` does to either side's vectors what a round consists of, and returns their sum.
template <class Work>
void compareVectors(Comparison& comparison, Work work)
{
    const std::size_t vertices = comparison.scaled(kVertices);
    const std::vector<float> coordinates = makeCoordinates(vertices);
    VectorStream stream(vertices);
    stream.fill(coordinates);
    MeshProperty property(vertices);
    property.fill(coordinates);

    const std::uint64_t expected = expectedSum(coordinates);
    const auto library = [&](Stopwatch& watch) { return digestOf(work(stream, coordinates, watch)); };
    const auto peer = [&](Stopwatch& watch) { return digestOf(work(property, coordinates, watch)); };
    comparison.run(vertices, {library, expected}, {peer, expected});
}
} // namespace

void compareVectorSum(Comparison& comparison)
{
    compareVectors(comparison, [](auto& vectors, const std::vector<float>&, Stopwatch& watch) {
        Sum3 sum{};
        watch.time([&] { sum = vectors.sum(); });
        return sum;
    });
}

void compareVectorFill(Comparison& comparison)
{
    compareVectors(comparison, [](auto& vectors, const std::vector<float>& coordinates, Stopwatch& watch) {
        vectors.fill(std::vector<float>(coordinates.size()));
        watch.time([&] { vectors.fill(coordinates); });
        return vectors.sum();
    });
}

void compareVectorCopy(Comparison& comparison)
{
    compareVectors(comparison,
                   [](auto& vectors, const std::vector<float>&, Stopwatch& watch) { return vectors.copy(watch); });
}
} // namespace bench
