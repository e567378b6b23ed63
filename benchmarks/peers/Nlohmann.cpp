#include "benchmarks/peers/Nlohmann.h"

#include "benchmarks/peers/JsonText.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace bench
{
namespace
{
using nlohmann::json;

std::string dump(const std::vector<Record>& records)
{
    json document = json::array();
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const Record& record = records[i];
        document.push_back({{"Index", i},
                            {"ID", record.id},
                            {"Origin", record.origin},
                            {"Label", record.label},
                            {"Flag", record.flag},
                            {"Weight", record.weight}});
    }
    return document.dump();
}

std::string write(const std::vector<Record>& records, Stopwatch& watch)
{
    std::string text;
    watch.time([&] { text = dump(records); });
    return text;
}

void parse(const std::string& text, RecordMap& records)
{
    const json document = json::parse(text);
    for (const json& value : document)
    {
        Record record;
        value.at("ID").get_to(record.id);
        value.at("Origin").get_to(record.origin);
        value.at("Label").get_to(record.label);
        value.at("Flag").get_to(record.flag);
        value.at("Weight").get_to(record.weight);
        records.emplace_hint(records.end(), value.at("Index").get<unsigned int>(), std::move(record));
    }
}

std::uint64_t read(const std::string& text, Stopwatch& watch)
{
    RecordMap records;
    watch.time([&] { parse(text, records); });
    return digestOf(records);
}

bool isRightText(const std::string& text, const std::vector<Record>& records)
{
    Stopwatch unused;
    return read(text, unused) == digestOf(records);
}
} // namespace

TextWriter nlohmannWriter()
{
    return {write, isRightText};
}

TextReader nlohmannReader()
{
    return {jsonText, read};
}
} // namespace bench
