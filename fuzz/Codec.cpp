// What a reader takes is written and read again as the same text; anything else is refused with a message.
// The first byte of an input chooses the format, for CSV also the structure, for NDJSON whether lines are counted.
#include "fuzz/Fuzz.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Csv.h"
#include "tools/codec/JsonDocument.h"
#include "tools/codec/Ndjson.h"
#include "tools/codec/Script.h"

#include <iterator>
#include <sstream>

using vumo::fuzz::require;

namespace
{
using Rewrite = std::string (*)(const std::string& text, unsigned int choice);

std::string rewriteJson(const std::string& text, unsigned int)
{
    std::istringstream in(text);
    std::ostringstream out;
    vumo::codec::writeJson(vumo::codec::readJson(in), out);
    return out.str();
}

/// What need not be counted is, once it is written.
std::string rewriteNdjson(const std::string& text, unsigned int choice)
{
    std::istringstream in(text);
    std::ostringstream out;
    const bool isCounted = choice % 2 == 0;
    vumo::codec::writeNdjson(vumo::codec::readNdjson(in, isCounted ? vumo::codec::kCounted : vumo::codec::kUncounted),
                             out);
    return out.str();
}

std::string rewriteCsv(const std::string& text, unsigned int choice)
{
    static constexpr const char* kStructures[] = {"AllTypes", "Bone", "Label", "Weight", "Empty", "Endless"};
    using vumo::Data::Structure;
    const Structure* const structure = Structure::structureByName(kStructures[choice % std::size(kStructures)]);
    std::istringstream in(text);
    std::ostringstream out;
    vumo::codec::writeCsv(vumo::codec::readCsv(in, *structure, "stream"), out);
    return out.str();
}

std::string rewriteScript(const std::string& text, unsigned int)
{
    std::istringstream in(text);
    vumo::codec::ScriptReader reader(in);
    std::string script;
    for (std::vector<std::string> words; reader.next(words); script += "\n")
    {
        for (const std::string& word : words)
            script += vumo::codec::scriptWord(word) + " ";
    }
    return script;
}

constexpr Rewrite kRewrites[] = {rewriteJson, rewriteNdjson, rewriteScript, rewriteCsv};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    vumo::fuzz::registerStructures();
    const Rewrite rewrite = kRewrites[data[0] % std::size(kRewrites)];
    const unsigned int choice = data[0] / static_cast<unsigned int>(std::size(kRewrites));
    std::string text;
    try
    {
        text = rewrite(vumo::fuzz::textOf(data + 1, size - 1), choice);
    }
    catch (const vumo::codec::CodecError& error)
    {
        require(*error.what() != '\0', "a text is refused without a message");
        return 0;
    }
    require(rewrite(text, choice) == text, "what was written is read as something else");
    return 0;
}
