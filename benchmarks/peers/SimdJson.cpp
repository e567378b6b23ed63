#include "benchmarks/peers/SimdJson.h"

#include "benchmarks/peers/JsonText.h"

#include <simdjson.h>

namespace bench
{
namespace
{
using simdjson::dom::element;

void readRecord(const element& value, RecordMap& records)
{
    Record record;
    record.id = static_cast<std::int32_t>(value["ID"].get_int64());
    float* coordinate = record.origin;
    for (const element entry : value["Origin"].get_array())
        *coordinate++ = static_cast<float>(double(entry));
    record.label = std::string_view(value["Label"]);
    record.flag = bool(value["Flag"]);
    record.weight = double(value["Weight"]);
    records.emplace_hint(records.end(), static_cast<unsigned int>(uint64_t(value["Index"])), std::move(record));
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    static simdjson::dom::parser theParser;
    const simdjson::padded_string padded(text);
    RecordMap records;
    watch.time([&] {
        for (const element value : theParser.parse(padded).get_array())
            readRecord(value, records);
    });
    return digestOf(records);
}
} // namespace

TextReader simdJsonReader()
{
    return {jsonText, read};
}
} // namespace bench
