#include "benchmarks/peers/RapidJson.h"

#include "benchmarks/peers/JsonText.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cmath>

namespace bench
{
namespace
{
using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

constexpr int kDecimalPlaces = 6;

void writeRecord(std::size_t index, const Record& record, Writer& writer)
{
    writer.StartObject();
    writer.Key("Index");
    writer.Uint64(index);
    writer.Key("ID");
    writer.Int(record.id);
    writer.Key("Origin");
    writer.StartArray();
    for (const float coordinate : record.origin)
        writer.Double(static_cast<double>(coordinate));
    writer.EndArray();
    writer.Key("Label");
    writer.String(record.label.data(), static_cast<rapidjson::SizeType>(record.label.size()));
    writer.Key("Flag");
    writer.Bool(record.flag);
    writer.Key("Weight");
    writer.Double(record.weight);
    writer.EndObject();
}

std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    rapidjson::StringBuffer buffer;
    watch.time([&] {
        Writer writer(buffer);
        writer.SetMaxDecimalPlaces(kDecimalPlaces);
        writer.StartArray();
        for (std::size_t i = 0; i < records.size(); ++i)
            writeRecord(i, records[i], writer);
        writer.EndArray();
    });
    return {buffer.GetString(), buffer.GetSize()};
}

void readRecord(const rapidjson::Value& value, RecordMap& records)
{
    Record record;
    record.id = value["ID"].GetInt();
    const rapidjson::Value& origin = value["Origin"];
    for (rapidjson::SizeType i = 0; i < 3; ++i)
        record.origin[i] = origin[i].GetFloat();
    const rapidjson::Value& label = value["Label"];
    record.label.assign(label.GetString(), label.GetStringLength());
    record.flag = value["Flag"].GetBool();
    record.weight = value["Weight"].GetDouble();
    records.emplace_hint(records.end(), value["Index"].GetUint(), std::move(record));
}

void readRecords(const std::string& text, RecordMap& records)
{
    rapidjson::Document document;
    document.Parse(text.data(), text.size());
    if (!document.IsArray())
        throw WrongResult("RapidJSON does not read the text");
    for (const rapidjson::Value& value : document.GetArray())
        readRecord(value, records);
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    RecordMap records;
    watch.time([&] { readRecords(text, records); });
    return digestOf(records);
}

/// The writer cuts digits off after the sixth place, it does not round.
bool isNear(double a, double b)
{
    constexpr double kLastPlace = 1e-6;
    return std::abs(a - b) < 2 * kLastPlace;
}

bool isNear(const Record& a, const Record& b)
{
    const bool isOriginNear =
        std::equal(a.origin, a.origin + 3, b.origin, [](double x, double y) { return isNear(x, y); });
    return isOriginNear && a.id == b.id && a.label == b.label && a.flag == b.flag && isNear(a.weight, b.weight);
}

bool isRightText(const std::string& text, const std::vector<Record>& records)
{
    RecordMap read;
    readRecords(text, read);
    if (read.size() != records.size())
        return false;
    return std::all_of(read.begin(), read.end(),
                       [&](const auto& entry) { return isNear(entry.second, records[entry.first]); });
}
} // namespace

TextWriter rapidJsonWriter()
{
    return {write, isRightText};
}

TextReader rapidJsonReader()
{
    return {jsonText, read};
}
} // namespace bench
