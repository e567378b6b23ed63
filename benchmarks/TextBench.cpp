#include "benchmarks/TextBench.h"

#include "benchmarks/peers/LoopText.h"
#include "benchmarks/peers/RawText.h"
#include "vumo/data/Numbers.h"

#include <sstream>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kElements = 200'000;
} // namespace

Side rawWriting(const Associations& associations, const std::string& expected)
{
    const auto round = [associations](Stopwatch& watch) {
        std::ostringstream out;
        watch.time([&] { writeRaw(associations, out); });
        return digestOf(out.str());
    };
    return {round, digestOf(expected)};
}

Side rawReading(const std::string& text, const std::vector<Record>& expected)
{
    recordStructure(); // for the reader to find
    const auto kept = std::make_shared<const std::string>(text);
    const auto round = [kept](Stopwatch& watch) {
        std::istringstream in(*kept);
        std::unique_ptr<Associations> associations;
        watch.time([&] { associations = readRaw(in); });
        return digestOf(streamIn(*associations));
    };
    return {round, digestOf(expected)};
}

void compareTextWriting(Comparison& comparison, Storage storage, const TextWriter& peer)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const Associations associations = associationsOf(streamOf(BlockArray(records), storage));

    Stopwatch unused;
    const std::string peerText = peer.write(records, unused);
    if (!peer.isRight(peerText, records))
        throw WrongResult("the peer writes other records");
    const auto peerRound = [&](Stopwatch& watch) { return digestOf(peer.write(records, watch)); };
    comparison.run(records.size(), rawWriting(associations, rawText(records)), {peerRound, digestOf(peerText)});
}

void compareExactWriting(Comparison& comparison, Storage storage)
{
    const std::vector<Record> records = makeUnevenRecords(comparison.scaled(kElements));
    const Associations associations = associationsOf(streamOf(BlockArray(records), storage));
    const TextReader reader = fromCharsReader(); // knows whether a text is exact
    Stopwatch unused;
    const auto libraryRound = [&](Stopwatch& watch) {
        std::ostringstream out;
        out << exactNumbers;
        watch.time([&] { writeRaw(associations, out); });
        return reader.read(out.str(), unused);
    };
    const auto peerRound = [&](Stopwatch& watch) { return reader.read(exactRawText(records, watch), unused); };
    comparison.run(records.size(), {libraryRound, digestOf(records)}, {peerRound, digestOf(records)});
}

void compareTextReading(Comparison& comparison, const TextReader& peer)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const std::string peerText = peer.textOf(records);
    const auto peerRound = [&](Stopwatch& watch) { return peer.read(peerText, watch); };
    comparison.run(records.size(), rawReading(rawText(records), records), {peerRound, digestOf(records)});
}
} // namespace bench
