#include "benchmarks/Records.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <random>

namespace bench
{
namespace
{
using Random = std::mt19937;

constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_ ";
constexpr char kEscaped[] = "\"\\\n";
constexpr unsigned int kOneEscapedIn = 8;
constexpr std::size_t kTextIndexLength = 12;

unsigned int below(Random& random, unsigned int limit)
{
    return static_cast<unsigned int>(random() % limit);
}

/// What a reader makes of a decimal number of up to six digits, between 1 and 4 of them after the point.
float makeCoordinate(Random& random)
{
    const int digits = static_cast<int>(below(random, 1'999'999)) - 999'999;
    const unsigned int places = 1 + below(random, 4);
    return std::strtof((std::to_string(digits) + "e-" + std::to_string(places)).c_str(), nullptr);
}

std::string makeLabel(Random& random, bool needsEscape)
{
    std::string label(8 + below(random, 5), ' ');
    for (char& c : label)
        c = kLetters[below(random, sizeof(kLetters) - 1)];
    if (needsEscape)
        label[below(random, 8)] = kEscaped[below(random, sizeof(kEscaped) - 1)];
    return label;
}
} // namespace

std::vector<Record> makeRecords(std::size_t count)
{
    Random random(20240611);
    std::vector<Record> records(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        Record& record = records[i];
        record.id = static_cast<std::int32_t>(below(random, 10'000'000));
        for (float& coordinate : record.origin)
            coordinate = makeCoordinate(random);
        record.label = makeLabel(random, i % kOneEscapedIn == 0);
        record.flag = below(random, 2) == 1;
        record.weight = below(random, 1'000'000) / 1e6;
    }
    return records;
}

std::vector<Record> makeUnevenRecords(std::size_t count)
{
    std::vector<Record> records = makeRecords(count);
    for (Record& record : records)
    {
        for (float& coordinate : record.origin)
            coordinate /= 3;
        record.weight /= 3;
    }
    return records;
}

std::vector<unsigned int> shuffledNumbers(std::size_t count, unsigned int seed)
{
    std::vector<unsigned int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0U);
    std::shuffle(numbers.begin(), numbers.end(), Random(seed));
    return numbers;
}

std::string textIndex(unsigned int number)
{
    const std::string digits = std::to_string(number);
    return "joint" + std::string(kTextIndexLength - 5 - digits.size(), '0') + digits;
}

void Digest::add(std::string_view text)
{
    add(static_cast<std::uint64_t>(text.size()));
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < text.size(); i += sizeof(word))
    {
        word = 0;
        std::memcpy(&word, text.data() + i, std::min(sizeof(word), text.size() - i));
        add(word);
    }
}

void Digest::add(const float (&values)[3])
{
    for (const float value : values)
        add(static_cast<double>(value));
}

void Digest::add(double value)
{
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    add(bits);
}

std::uint64_t digestOf(std::string_view text)
{
    Digest digest;
    digest.add(text);
    return digest.sum();
}

std::uint64_t digestOf(const std::vector<std::string>& texts)
{
    Digest digest;
    for (const std::string& text : texts)
        digest.add(text);
    return digest.sum();
}

std::uint64_t digestOf(const std::vector<Record>& records)
{
    Digest digest;
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        digest.add(static_cast<std::uint64_t>(i));
        digest.addRecord(records[i]);
    }
    return digest.sum();
}

std::uint64_t digestOf(const RecordMap& records)
{
    Digest digest;
    for (const auto& [index, record] : records)
    {
        digest.add(static_cast<std::uint64_t>(index));
        digest.addRecord(record);
    }
    return digest.sum();
}
} // namespace bench
