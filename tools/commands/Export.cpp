#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Listing.h"
#include "core/Unmatched.h"
#include "edit/Selected.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Csv.h"
#include "tools/codec/JsonDocument.h"
#include "tools/codec/Ndjson.h"

#include <memory>
#include <optional>
#include <sstream>

namespace
{
/// Reads no more nodes than are needed; says what is missing at the address.
void read(Session& session, SceneFile& scene, const std::optional<Address>& address)
{
    if (!address)
    {
        scene.readSelected(session.selection().nodes);
        return tellUnmatched(session, listingOf(scene.metadata()));
    }
    scene.readNode(address->node);
    scene.node(address->node);
    if (address->stream)
        scene.stream(*address);
    else if (address->channel)
        scene.channel(*address);
}

/// Lines of JSON for one of several files, which each line names.
void writeNdjsonOf(const std::string& file, const vumo::codec::Metadata& metadata, std::ostream& out)
{
    std::stringstream lines;
    vumo::codec::writeNdjson(metadata, lines);
    const std::string start = JsonObject().addText("file", file).text();
    for (std::string line; std::getline(lines, line);)
        out << start.substr(0, start.size() - 1) << ", " << line.substr(1) << "\n"; // both are objects
}

eExitCode exportFile(const Job& job, const std::string& format)
{
    const std::vector<std::string> words = job.session.words();
    const std::optional<Address> address = words.empty() ? std::nullopt : std::optional<Address>(words);
    const Selection& selection = job.session.selection();
    SceneFile scene(job.session, job.file);
    read(job.session, scene, address);
    const vumo::codec::Metadata metadata = selected(scene, selection, address ? &*address : nullptr);
    if (format == "csv")
        vumo::codec::writeCsv(scene.stream(*address), job.out);
    else if (format == "ndjson" && job.session.isBatch())
        writeNdjsonOf(job.file, metadata, job.out);
    else if (format == "ndjson")
        vumo::codec::writeNdjson(metadata, job.out);
    else if (job.json)
        job.json->add("metadata", vumo::codec::jsonDocument(metadata));
    else
        vumo::codec::writeJson(metadata, job.out);
    return address ? kDone : scene.tellUnreadable(job.session);
}
} // namespace

void addExport(Session& session)
{
    Command command = session.addCommand("export", "Write metadata as JSON, lines of JSON or CSV, for other programs");
    session.addFileAndWords(command, {Session::kAddress.begin(), Session::kAddress.begin() + 3}, 0);
    session.addSelection(command);
    const auto format = std::make_shared<std::string>("json");
    command.addChoice("--format", *format, {"json", "ndjson", "csv"},
                      "one JSON document, a line of JSON for each thing, or one stream as CSV");
    session.setWork(command, [&session, format] {
        if (*format == "csv" && session.words().size() < 3)
            throw Failure(kWrongUsage, "CSV is one stream: NODE CHANNEL STREAM are needed");
        if (*format == "csv" && session.isBatch())
            throw Failure(kWrongUsage, "CSV is one stream of one file; json and ndjson have the files' names in them");
        Batch batch = batchOf(session);
        batch.areLinesLed = false;
        session.setJson(*format == "json" && session.isBatch());
        return forEachFile(session, batch, [&format](Job& job) { return exportFile(job, *format); });
    });
}
