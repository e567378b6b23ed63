#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Text.h"
#include "edit/Parts.h"
#include "edit/Save.h"
#include "edit/Script.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Csv.h"
#include "tools/codec/JsonDocument.h"
#include "tools/codec/Ndjson.h"
#include "vumo/foundation/Ref.h"

#include <limits>
#include <memory>
#include <sstream>

using namespace vumo::Data;

namespace
{
constexpr unsigned int kAnyCount = std::numeric_limits<unsigned int>::max();

/// What the command line says, and the text that is imported.
struct Request
{
    std::string name;
    std::string format;
    std::string structure;
    std::string merge = "replace";
    unsigned int elements = kAnyCount; ///< of CSV
    bool isUncounted = false;          ///< of NDJSON
    std::string text;
};

/// The format that the name's ending says, unless it was given.
std::string formatOf(const Request& request)
{
    if (!request.format.empty())
        return request.format;
    std::string ending = request.name.substr(request.name.find_last_of('.') + 1);
    if (ending == "csv" || ending == "ndjson")
        return ending;
    if (ending != "json" && request.name != "-")
        throw Failure(kWrongUsage, "the ending of " + request.name + " does not tell its form; --format does");
    return "json";
}

std::string titleOf(const std::string& name)
{
    return name == "-" ? "standard input" : escaped(name);
}

/// Refuses a text that has nothing in it, as a pipe delivers after a command that failed.
std::string textOf(const Session& session, const std::string& name)
{
    std::string text = session.readInput(name);
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        throw Failure(kBadInput, titleOf(name) + ": there is nothing in it");
    return text;
}

/// The structure of a stream that is there, or the one that is given.
const Structure& structureFor(const Request& request, const Address& address, SceneFile& scene)
{
    if (!request.structure.empty())
        return structureToUse(scene, request.structure);
    const Channel* const channel = nodeToEdit(scene, address.node).findChannel(*address.channel);
    const Stream* const stream = channel ? channel->findDataStream(*address.stream) : nullptr;
    if (!stream)
        throw scene.failure(kNo, "there is no stream " + inQuotes(*address.stream) +
                                     "; --structure says what a new one is of");
    return stream->structure();
}

/// Refuses a stream that may have been cut. CSV has no place to tell how long it is.
void checkCount(const Request& request, const Address& address, const Stream& stream, SceneFile& scene)
{
    const std::size_t count = stream.elementCount();
    const std::string counted = std::to_string(count);
    if (request.elements != kAnyCount && count != request.elements)
        throw vumo::codec::CodecError("the number of elements is " + counted + ", not " +
                                      std::to_string(request.elements));
    const Channel* const channel = nodeToEdit(scene, address.node).findChannel(*address.channel);
    const Stream* const present = channel ? channel->findDataStream(*address.stream) : nullptr;
    if (request.elements == kAnyCount && request.merge == "replace" && present && present->elementCount() > count)
        throw scene.failure(kNotWritten, "stream " + inQuotes(*address.stream) + " has " +
                                             std::to_string(present->elementCount()) + " elements, and the CSV has " +
                                             counted + ": it may have been cut; --elements " + std::to_string(count) +
                                             " says that it is whole");
}

/// The stream, as the only thing.
vumo::codec::Metadata streamFromCsv(const Request& request, const Address& address, SceneFile& scene, std::istream& in)
{
    const Structure& structure = structureFor(request, address, scene);
    vumo::codec::Metadata metadata;
    Channel channel = metadata.nodes[address.node].channel(*address.channel);
    const Stream stream = vumo::codec::readCsv(in, structure, *address.stream);
    checkCount(request, address, stream, scene);
    channel.setDataStream(stream);
    return metadata;
}

void put(const vumo::codec::Metadata& metadata, Edit::eMerge merge, SceneFile& scene)
{
    for (const auto& structure : metadata.structures)
        addStructure(scene, *structure.second);
    for (const auto& [node, associations] : metadata.nodes)
    {
        Associations& target = nodeToEdit(scene, node);
        for (const Channel& channel : associations)
        {
            target.channel(channel.name());
            for (const Stream* const stream : channel)
                putStream(scene, *stream, stream->name(), target.channel(channel.name()), merge);
        }
    }
}

eExitCode importText(const Job& job, const Request& request)
{
    const std::vector<std::string> words = job.session.words();
    const std::string format = formatOf(request);
    const Address address({words.begin() + 1, words.end()});
    std::istringstream in(request.text);
    SceneFile scene = openToEdit(job, job.file);
    vumo::codec::Metadata metadata;
    std::set<std::string> nodes;
    if (format == "csv")
        nodes.insert(address.node);
    try
    {
        if (format == "json")
            metadata = vumo::codec::readJson(in);
        else if (format == "ndjson")
            metadata =
                vumo::codec::readNdjson(in, request.isUncounted ? vumo::codec::kUncounted : vumo::codec::kCounted);
        for (const auto& node : metadata.nodes)
            nodes.insert(node.first);
        scene.read(&nodes);
        if (format == "csv")
            metadata = streamFromCsv(request, address, scene, in);
    }
    catch (const vumo::codec::CodecError& error)
    {
        throw Failure(kBadInput, titleOf(request.name) + ": " + error.what());
    }
    put(metadata, mergeOf(request.merge), scene);
    save(job, scene);
    return kDone;
}

void check(const Request& request, std::size_t words)
{
    const bool isCsv = formatOf(request) == "csv";
    if (words != (isCsv ? 4U : 1U))
        throw Failure(kWrongUsage, isCsv ? "CSV is one stream: NODE CHANNEL STREAM are needed"
                                         : "NODE CHANNEL STREAM are for CSV; what else is imported has them");
    if (!isCsv && !request.structure.empty())
        throw Failure(kWrongUsage, "--structure is for CSV; what else is imported has it");
    if (!isCsv && request.elements != kAnyCount)
        throw Failure(kWrongUsage, "--elements is for CSV; what else is imported tells itself whether it is whole");
    if (request.isUncounted && formatOf(request) != "ndjson")
        throw Failure(kWrongUsage, "--uncounted is for NDJSON, lines that count themselves");
    mergeOf(request.merge);
}
} // namespace

void addImport(Session& session)
{
    Command command = session.addCommand("import", "Put what export wrote into a scene, beside what else it has");
    std::vector<Word> words = {{"DATA", "the file to import, or \"-\" for standard input"}};
    words.insert(words.end(), Session::kAddress.begin(), Session::kAddress.begin() + 3);
    session.addFileAndWords(command, words, 1);
    session.addSaving(command);
    const auto request = std::make_shared<Request>();
    command.addChoice("--format", request->format, {"json", "ndjson", "csv"},
                      "the form of DATA, if its ending does not tell; json unless said");
    command.addOption("--structure", request->structure, "TEXT",
                      "the structure of a CSV stream that the scene does not have, as its text or by its name");
    command.addNumber("--elements", request->elements, 0, kAnyCount - 1, "COUNT",
                      "how many elements CSV must have; needed where it replaces a stream that has more");
    command.addFlag("--uncounted", request->isUncounted,
                    "take NDJSON that does not end with the line that counts the others, or with a wrong one, as other "
                    "programs may make it; whether it was cut is not known then");
    command.addOption("--merge", request->merge, "keep|replace|fail",
                      "what becomes of a stream that is there already; replace unless said");
    session.setWork(command, [&session, request] {
        checkSaving(session);
        request->name = session.words()[0];
        check(*request, session.words().size());
        request->text = textOf(session, request->name);
        return forEachFile(session, [&request](Job& job) { return importText(job, *request); });
    });
}
