#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// The benchmarks of vumo against what one would write by hand and against libraries next door.
namespace bench
{
/// The record of all workloads, as a user would write it.
struct Record
{
    std::int32_t id = 0;
    float origin[3] = {};
    std::string label;
    bool flag = false;
    double weight = 0;
};

using RecordMap = std::map<unsigned int, Record>;

/// Thrown where a side of a comparison did not do what it should have. Fails the whole run.
class WrongResult : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// Always the same records. All numbers have six significant digits, so they survive every text; labels have 8 to
/// 12 characters, and those of one record in eight need escapes.
std::vector<Record> makeRecords(std::size_t count);

/// The same with numbers as computations leave them: hardly one has less digits than its type can hold.
std::vector<Record> makeUnevenRecords(std::size_t count);

/// The numbers from 0 to `count` - 1; for each seed always in the same disorder.
std::vector<unsigned int> shuffledNumbers(std::size_t count, unsigned int seed);

/// A text of twelve characters for each number, in their order.
std::string textIndex(unsigned int number);

/// A checksum over values, texts and their order: equal sums mean equal records at equal places.
class Digest
{
public:
    void add(std::uint64_t word) { mSum = (mSum ^ word ^ (mSum >> 29)) * 0x9E3779B97F4A7C15U; }
    void add(unsigned int number) { add(static_cast<std::uint64_t>(number)); }
    void add(std::string_view text);
    void add(const float (&values)[3]);
    void add(double value);

    /// A record, whatever it looks like in memory.
    template <class AnyRecord>
    void addRecord(const AnyRecord& record)
    {
        add(static_cast<std::uint64_t>(record.id));
        add(record.origin);
        add(textOf(record.label));
        add(static_cast<std::uint64_t>(record.flag));
        add(record.weight);
    }

    std::uint64_t sum() const { return mSum; }

private:
    static std::string_view textOf(const std::string& label) { return label; }
    static std::string_view textOf(const char* label) { return label ? label : std::string_view(); }

    std::uint64_t mSum = 1;
};

std::uint64_t digestOf(std::string_view text);
std::uint64_t digestOf(const std::vector<std::string>& texts);

/// Of the records at the numbers from 0, which is also the digest of a map that holds them.
std::uint64_t digestOf(const std::vector<Record>& records);
std::uint64_t digestOf(const RecordMap& records);
} // namespace bench
