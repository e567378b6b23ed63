#include "benchmarks/HashFlood.h"

#include "benchmarks/Records.h"

#include <cstdint>
#include <functional>
#include <random>
#include <string_view>

namespace bench
{
namespace
{
// The standard library hashes texts by MurmurHash64A, in blocks of 8 bytes. Each block is mixed on its own and then
// added to the sum by an exclusive or, before the sum is multiplied by an odd number. So two blocks whose mixed values
// differ in the highest bit alone make a difference of that bit, and the same difference in the next block undoes it.
// Found by Aumasson and Bernstein, "Hash-flooding DoS reloaded" (2012).
constexpr std::uint64_t kMultiplier = 0xC6A4A7935BD1E995;
constexpr std::uint64_t kHighestBit = std::uint64_t(1) << 63;
constexpr unsigned int kShift = 47;

constexpr std::uint64_t inverseOf(std::uint64_t odd)
{
    std::uint64_t inverse = odd; // right to three bits, and to twice as many after each step
    for (int i = 0; i < 5; ++i)
        inverse *= 2 - odd * inverse;
    return inverse;
}

std::uint64_t mixed(std::uint64_t block)
{
    block *= kMultiplier;
    block ^= block >> kShift;
    return block * kMultiplier;
}

std::uint64_t unmixed(std::uint64_t value)
{
    value *= inverseOf(kMultiplier);
    value ^= value >> kShift; // which undoes itself, as it shifts by more than half of the bits
    return value * inverseOf(kMultiplier);
}

std::string bytesOf(std::uint64_t block)
{
    return std::string(reinterpret_cast<const char*>(&block), sizeof(block));
}

/// Two blocks that can take each other's place, twice in a row.
struct Pair
{
    std::string first;
    std::string second;
};

Pair makePair(std::mt19937_64& random)
{
    constexpr std::string_view kForbidden(":=[]\n\0\"\\; \t\r\v\f", 14);
    for (;;)
    {
        const std::uint64_t block = random();
        const Pair pair = {bytesOf(block), bytesOf(unmixed(mixed(block) ^ kHighestBit))};
        if ((pair.first + pair.second).find_first_of(kForbidden) == std::string::npos)
            return pair;
    }
}
} // namespace

std::vector<std::string> textsOfOneHash(std::size_t count)
{
    std::mt19937_64 random(1);
    std::vector<std::string> texts = {""};
    while (texts.size() < count)
    {
        const Pair places[] = {makePair(random), makePair(random)};
        const std::size_t size = texts.size();
        for (std::size_t i = 0; i < size; ++i)
        {
            texts.push_back(texts[i] + places[0].second + places[1].second);
            texts[i] += places[0].first + places[1].first;
        }
    }
    texts.resize(count);
    const std::hash<std::string> hash;
    if (hash(texts.front()) != hash(texts.back()))
        throw WrongResult("the texts do not have one hash");
    return texts;
}
} // namespace bench
