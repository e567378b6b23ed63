#include "benchmarks/peers/SimdJson.h"

#include "benchmarks/peers/JsonText.h"

#include <simdjson.h>

namespace bench
{
namespace
{
namespace dom = simdjson::dom;
namespace ondemand = simdjson::ondemand;

/// The record at the end of the map, to be filled.
Record& addRecord(RecordMap& records, std::uint64_t index)
{
    return records.emplace_hint(records.end(), static_cast<unsigned int>(index), Record())->second;
}

/// Takes the next member, which must be that one: nothing is searched.
dom::element take(dom::object::iterator& member, std::string_view name)
{
    const dom::key_value_pair pair = *member;
    if (pair.key != name)
        throw WrongResult("no " + std::string(name) + " where it should be");
    ++member;
    return pair.value;
}

void readRecord(const dom::element& value, RecordMap& records)
{
    dom::object::iterator member = dom::object(value).begin();
    Record& record = addRecord(records, take(member, "Index"));
    record.id = static_cast<std::int32_t>(take(member, "ID").get_int64());
    float* coordinate = record.origin;
    for (const dom::element entry : take(member, "Origin").get_array())
        *coordinate++ = static_cast<float>(double(entry));
    record.label = std::string_view(take(member, "Label"));
    record.flag = bool(take(member, "Flag"));
    record.weight = double(take(member, "Weight"));
}

/// Members are asked for in the order of the text, in which they are found at once.
void readRecord(ondemand::object value, RecordMap& records)
{
    Record& record = addRecord(records, value.find_field("Index"));
    record.id = static_cast<std::int32_t>(value.find_field("ID").get_int64());
    float* coordinate = record.origin;
    for (auto entry : value.find_field("Origin").get_array())
        *coordinate++ = static_cast<float>(double(entry));
    record.label = std::string_view(value.find_field("Label"));
    record.flag = bool(value.find_field("Flag"));
    record.weight = double(value.find_field("Weight"));
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    static dom::parser theParser;
    const simdjson::padded_string padded(text);
    RecordMap records;
    watch.time([&] {
        for (const dom::element value : theParser.parse(padded).get_array())
            readRecord(value, records);
    });
    return digestOf(records);
}

std::uint64_t readOnDemand(const std::string& text, Stopwatch& watch)
{
    static ondemand::parser theParser;
    const simdjson::padded_string padded(text);
    RecordMap records;
    watch.time([&] {
        ondemand::document document = theParser.iterate(padded);
        for (auto value : document.get_array())
            readRecord(value.get_object(), records);
    });
    return digestOf(records);
}
} // namespace

TextReader simdJsonReader()
{
    return {jsonText, read};
}

TextReader simdJsonOnDemandReader()
{
    return {jsonText, readOnDemand};
}
} // namespace bench
