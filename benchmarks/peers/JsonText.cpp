#include "benchmarks/peers/JsonText.h"

#include "benchmarks/peers/QuotedText.h"

#include <sstream>

namespace bench
{
std::string jsonText(const std::vector<Record>& records)
{
    std::ostringstream out;
    out << '[';
    for (std::size_t i = 0; i < records.size(); ++i)
    {
        const Record& record = records[i];
        const float(&origin)[3] = record.origin;
        out << (i > 0 ? "," : "") << "{\"Index\":" << i << ",\"ID\":" << record.id << ",\"Origin\":[" << origin[0]
            << ',' << origin[1] << ',' << origin[2] << "],\"Label\":";
        writeQuoted(record.label, out);
        out << ",\"Flag\":" << (record.flag ? "true" : "false") << ",\"Weight\":" << record.weight << '}';
    }
    out << ']';
    return out.str();
}
} // namespace bench
