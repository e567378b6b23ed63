#include "benchmarks/TextBench.h"

#include "benchmarks/peers/RawText.h"

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

void compareTextReading(Comparison& comparison, const TextReader& peer)
{
    const std::vector<Record> records = makeRecords(comparison.scaled(kElements));
    const std::string peerText = peer.textOf(records);
    const auto peerRound = [&](Stopwatch& watch) { return peer.read(peerText, watch); };
    comparison.run(records.size(), rawReading(rawText(records), records), {peerRound, digestOf(records)});
}
} // namespace bench
