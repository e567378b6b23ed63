#include "benchmarks/HostileBench.h"

#include "benchmarks/HashFlood.h"
#include "benchmarks/PeakMemory.h"
#include "benchmarks/SceneFileBench.h"
#include "benchmarks/ScratchFile.h"
#include "examples/scene/Chunks.h"
#include "examples/scene/Scene.h"
#include "vumo/foundation/Ref.h"
#include "vumo/serialize/ChannelSerializerRaw.h"
#include "vumo/serialize/StreamSerializerRaw.h"
#include "vumo/serialize/StructureSerializerRaw.h"

#include <algorithm>
#include <fstream>
#include <sstream>

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr char kDigits[] = "0123456789";
constexpr char kAsciiHead[] = "//Ovri ASCII 2024 scene\ncreateNode mesh -n \"Body\";\n";
constexpr char kAsciiTrailer[] = "// End of hostile.oa\n";
constexpr char kDigitStructure[] = "name=Digit:int32=value";
constexpr char kStreamHead[] = "name digits\nstructure Digit\n";

/// `value` once for each of `count` parts.
std::string repeated(const std::string& value, std::size_t count)
{
    std::string text;
    text.reserve(value.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text += value;
    return text;
}

/// Indices and values in turns. There are ten indices only, so most elements replace another one.
std::string digitLines(std::size_t lines)
{
    std::string text;
    for (std::size_t i = 0; i < lines / 2; ++i)
    {
        text += {kDigits[i % 10], '\n'};
        text += {kDigits[i % 7], '\n'};
    }
    return text;
}

std::size_t digitCount(std::size_t lines)
{
    return std::min<std::size_t>(lines / 2, 10);
}

std::size_t lineCount(const std::string& text)
{
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

/// Reads the file in each round and has `outcome` say what came of it.
HostileInput fileInput(const std::string& extension, const std::string& bytes, std::size_t expected,
                       std::size_t (*outcome)(const Accessor&))
{
    const auto file = std::make_shared<const ScratchFile>(extension);
    std::ofstream out(file->name(), std::ios::binary);
    if (!out.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush())
        throw WrongResult("cannot write " + file->name());
    const auto round = [file, outcome](Stopwatch& watch) {
        std::string errors;
        std::unique_ptr<Accessor> accessor;
        watch.time([&] { accessor = Accessor::readFile(file->name(), errors); });
        if (!accessor)
            throw WrongResult("the library does not read the file: " + errors);
        const std::size_t result = outcome(*accessor);
        watch.time([&] { accessor.reset(); });
        return std::uint64_t(result);
    };
    return {{round, expected}, bytes.size()};
}

HostileInput binaryInput(const std::string& chunks, std::size_t expected, std::size_t (*outcome)(const Accessor&))
{
    example::Scene scene;
    scene.mTrailer = chunks;
    std::ostringstream bytes;
    example::writeScene(scene, bytes);
    return fileInput("ob", bytes.str(), expected, outcome);
}

/// Calls `read` with the text in each round, and has it say what came of it.
template <class Read>
HostileInput textInput(const std::string& text, std::size_t expected, Read read)
{
    const auto kept = std::make_shared<const std::string>(text);
    const auto round = [kept, read](Stopwatch& watch) {
        std::istringstream in(*kept);
        std::size_t result = 0;
        watch.time([&] { result = read(in); });
        return std::uint64_t(result);
    };
    return {{round, expected}, text.size()};
}

std::string statement(const std::string& command, const std::string& flag, const std::string& text)
{
    return command + " -fmt \"raw\" " + flag + " \"" + text + "\"";
}

std::string structureStatement(const std::string& text)
{
    return statement("dataStructure", "-as", text) + ";\n";
}

/// The value of a statement. Lines of several words have their newlines escaped: only those of one word go on with it.
std::string digitMetadata(std::size_t lines)
{
    return "channel vertex\\nname vertex\\nstream\\nname digits\\nstructure Digit\n" + digitLines(lines) +
           "endStream\nendChannel\nendAssociations\n";
}

std::string metadataStatement(const std::string& text)
{
    return statement("applyMetadata", "-v", text) + "\n\tBody;\n";
}

std::string zeroTerminated(const std::string& text)
{
    return text + '\0';
}

std::string metadataChunk(const std::string& node)
{
    return example::chunk("MTDA", zeroTerminated(node) + zeroTerminated("raw") + zeroTerminated("endAssociations\n"));
}

std::string structureChunk(const std::string& text)
{
    return example::chunk("DATS", zeroTerminated("raw") + zeroTerminated(text));
}

std::size_t nodesIn(const Accessor& accessor)
{
    return accessor.associations().size();
}

std::size_t structuresIn(const Accessor& accessor)
{
    return accessor.structures().size();
}

std::size_t elementsIn(const Accessor& accessor)
{
    const Associations& metadata = metadataOf(accessor);
    return metadata.channelAt(0).dataStream(0)->elementCount();
}

/// The structure of digits, for the reader to find.
void registerDigits()
{
    static const Structure* const theStructure = [] {
        Structure* const structure = new Structure("Digit");
        structure->addMember(Member::kInt32, 1, "value");
        Structure::registerStructure(*structure); // for the life of the process
        return structure;
    }();
    if (!theStructure)
        throw WrongResult("there is no structure of digits");
}

double memoryPerByte(const HostileInput& input)
{
    const std::uint64_t peak = peakMemoryOf([&] {
        Stopwatch unused;
        if (input.reading.round(unused) != input.reading.expected)
            throw WrongResult("a hostile input gives something else");
    });
    return static_cast<double>(peak) / static_cast<double>(input.size);
}
} // namespace

HostileInput longStatement(std::size_t megabytes)
{
    const std::vector<Record> records = recordsOfTextSize(megabytes << 20);
    const auto file = std::make_shared<const SceneFile>("oa", records);
    return {fileReading(file, records), file->metadataSize()};
}

HostileInput linesAboveStatement(std::size_t lines)
{
    const std::string bytes = kAsciiHead + repeated("a\n", lines) + structureStatement(kDigitStructure) +
                              metadataStatement("endAssociations\\n") + kAsciiTrailer;
    return fileInput("oa", bytes, 1, nodesIn);
}

HostileInput linesInStatement(std::size_t lines)
{
    const std::string bytes =
        kAsciiHead + structureStatement(kDigitStructure) + metadataStatement(digitMetadata(lines)) + kAsciiTrailer;
    return fileInput("oa", bytes, digitCount(lines), elementsIn);
}

HostileInput manyStatements(std::size_t statements)
{
    std::string bytes = kAsciiHead;
    for (std::size_t i = 0; i < statements; ++i)
        bytes += structureStatement("name=" + std::to_string(i) + ":bool=a");
    return fileInput("oa", bytes + kAsciiTrailer, statements, structuresIn);
}

HostileInput manyHostChunks(std::size_t chunks)
{
    const std::string half = repeated(example::chunk("HOST", ""), chunks / 2);
    return binaryInput(half + metadataChunk("Body") + half, 1, nodesIn);
}

HostileInput manyStructures(std::size_t structures)
{
    std::string chunks;
    for (std::size_t i = 0; i < structures; ++i)
        chunks += structureChunk("name=" + std::to_string(i) + ":bool=a");
    return binaryInput(chunks, structures, structuresIn);
}

HostileInput manyNodes(std::size_t nodes)
{
    std::string chunks = structureChunk(kDigitStructure);
    for (std::size_t i = 0; i < nodes; ++i)
        chunks += metadataChunk(std::to_string(i));
    return binaryInput(chunks, nodes, nodesIn);
}

HostileInput structuresOfOneHash(std::size_t structures)
{
    std::string chunks;
    for (const std::string& name : textsOfOneHash(structures))
        chunks += structureChunk("name=" + name + ":bool=a");
    return binaryInput(chunks, structures, structuresIn);
}

HostileInput membersOfOneHash(std::size_t members)
{
    std::string text = "name=S";
    for (const std::string& name : textsOfOneHash(members))
        text += ":bool=" + name;
    return textInput(text, members, [](std::istream& in) {
        std::string errors;
        const vumo::Ref<Structure> structure(StructureSerializerRaw::theFormat()->read(in, errors));
        if (!structure)
            throw WrongResult("the library does not read the structure: " + errors);
        return std::size_t(structure->memberCount());
    });
}

HostileInput linesOfStructure(std::size_t lines)
{
    return textInput(repeated("a\n", lines), lines, [](std::istream& in) {
        std::string errors;
        StructureSerializerRaw::theFormat()->read(in, errors);
        return lineCount(errors); // one after each but the last, which says that there is no name
    });
}

HostileInput linesOfChannel(std::size_t lines)
{
    return textInput(repeated("a\n", lines), lines + 2, [](std::istream& in) {
        std::string errors;
        ChannelSerializerRaw::theFormat()->read(in, errors);
        return lineCount(errors); // one more says that there is no end, and the last one sums up
    });
}

HostileInput linesOfStream(std::size_t lines)
{
    registerDigits();
    return textInput(kStreamHead + digitLines(lines), digitCount(lines), [](std::istream& in) {
        std::string errors;
        const std::unique_ptr<Stream> stream(StreamSerializerRaw::theFormat()->read(in, errors));
        if (!stream)
            throw WrongResult("the library does not read the stream: " + errors);
        return std::size_t(stream->elementCount());
    });
}

void compareHostileTime(Comparison& comparison, HostileKind kind, std::size_t many, std::size_t few)
{
    const HostileInput large = kind(comparison.scaled(many));
    const HostileInput small = kind(comparison.scaled(few));
    const auto passes = static_cast<unsigned int>(many / few);
    comparison.run(large.size, large.reading, small.size * passes, repeated(small.reading, passes));
}

void compareHostileMemory(Comparison& comparison, HostileKind kind, std::size_t many, std::size_t few)
{
    comparison.count(memoryPerByte(kind(comparison.scaled(many))), memoryPerByte(kind(comparison.scaled(few))));
}
} // namespace bench
