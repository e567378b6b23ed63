#include "benchmarks/peers/RapidJson.h"

#include "benchmarks/peers/JsonText.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace bench
{
namespace
{
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

/// A record whose numbers the writer writes in six digits: it has no floats, and writes a double in as few digits as
/// read back to it.
struct ShortRecord
{
    const Record* record;
    double origin[3];
};

double shortDouble(float value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%g", static_cast<double>(value));
    return std::strtod(text, nullptr);
}

std::vector<ShortRecord> shortRecords(const std::vector<Record>& records)
{
    std::vector<ShortRecord> result;
    result.reserve(records.size());
    for (const Record& record : records)
    {
        const float(&origin)[3] = record.origin;
        result.push_back({&record, {shortDouble(origin[0]), shortDouble(origin[1]), shortDouble(origin[2])}});
    }
    return result;
}

template <std::size_t Size>
void writeKey(const char (&key)[Size], Writer& writer)
{
    writer.Key(key, Size - 1);
}

void writeRecord(std::size_t index, const ShortRecord& entry, Writer& writer)
{
    const Record& record = *entry.record;
    writer.StartObject();
    writeKey("Index", writer);
    writer.Uint64(index);
    writeKey("ID", writer);
    writer.Int(record.id);
    writeKey("Origin", writer);
    writer.StartArray();
    for (const double coordinate : entry.origin)
        writer.Double(coordinate);
    writer.EndArray();
    writeKey("Label", writer);
    writer.String(record.label.data(), static_cast<rapidjson::SizeType>(record.label.size()));
    writeKey("Flag", writer);
    writer.Bool(record.flag);
    writeKey("Weight", writer);
    writer.Double(record.weight);
    writer.EndObject();
}

std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    const std::vector<ShortRecord> entries = shortRecords(records);
    rapidjson::StringBuffer buffer;
    watch.time([&] {
        Writer writer(buffer);
        writer.StartArray();
        for (std::size_t i = 0; i < entries.size(); ++i)
            writeRecord(i, entries[i], writer);
        writer.EndArray();
    });
    return {buffer.GetString(), buffer.GetSize()};
}

/// Takes the next member, which must be that one: nothing is searched.
template <std::size_t Size>
const rapidjson::Value& take(rapidjson::Value::ConstMemberIterator& member, const char (&name)[Size])
{
    if (member->name.GetStringLength() != Size - 1 || std::memcmp(member->name.GetString(), name, Size - 1) != 0)
        throw WrongResult(std::string("no ") + name + " where it should be");
    return (member++)->value;
}

void readRecord(const rapidjson::Value& value, RecordMap& records)
{
    rapidjson::Value::ConstMemberIterator member = value.MemberBegin();
    const unsigned int index = take(member, "Index").GetUint();
    Record& record = records.emplace_hint(records.end(), index, Record())->second;
    record.id = take(member, "ID").GetInt();
    const rapidjson::Value& origin = take(member, "Origin");
    for (rapidjson::SizeType i = 0; i < 3; ++i)
        record.origin[i] = origin[i].GetFloat();
    const rapidjson::Value& label = take(member, "Label");
    record.label.assign(label.GetString(), label.GetStringLength());
    record.flag = take(member, "Flag").GetBool();
    record.weight = take(member, "Weight").GetDouble();
}

/// Strings stay in the text, which is spoilt.
template <unsigned int Flags>
void readRecords(std::string& text, RecordMap& records)
{
    rapidjson::Document document;
    document.ParseInsitu<Flags>(text.data());
    if (!document.IsArray())
        throw WrongResult("RapidJSON does not read the text");
    for (const rapidjson::Value& value : document.GetArray())
        readRecord(value, records);
}

template <unsigned int Flags>
std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    std::string spoilt = text;
    RecordMap records;
    watch.time([&] { readRecords<Flags>(spoilt, records); });
    return digestOf(records);
}

bool isRightText(const std::string& text, const std::vector<Record>& records)
{
    // The writer spends some digits too many now and then, which the usual parser does not read to the last bit.
    Stopwatch unused;
    return read<rapidjson::kParseFullPrecisionFlag>(text, unused) == digestOf(records);
}
} // namespace

TextWriter rapidJsonWriter()
{
    return {write, isRightText};
}

TextReader rapidJsonReader()
{
    return {jsonText, read<rapidjson::kParseDefaultFlags>};
}
} // namespace bench
