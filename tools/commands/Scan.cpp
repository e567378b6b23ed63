#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/ExternalContent.h"
#include "core/Extremes.h"
#include "core/FileTree.h"
#include "core/SceneFile.h"
#include "core/Text.h"
#include "vumo/accessor/AccessorOvri.h"
#include "vumo/data/Channel.h"

#include <sys/stat.h>

#include <map>
#include <memory>
#include <string_view>
#include <tuple>

using namespace vumo::Data;

namespace
{
/// Of the elements of each stream, by the names of node, channel and stream.
using ByteCounts = std::map<std::tuple<std::string_view, std::string_view, std::string_view>, std::uint64_t>;

std::uint64_t nanoseconds(const timespec& time)
{
    constexpr std::uint64_t kInSecond = 1000000000;
    return static_cast<std::uint64_t>(time.tv_sec) * kInSecond + static_cast<std::uint64_t>(time.tv_nsec);
}

/// Adds what tells a file and its state from others, if it is there.
bool addIdentity(JsonObject& identity, const std::string& fileName)
{
    struct stat status = {};
    if (stat(fileName.c_str(), &status) != 0)
        return false;
    identity.add("device", status.st_dev).add("inode", status.st_ino);
    identity.add("size", static_cast<std::uint64_t>(status.st_size));
    identity.add("mtime", nanoseconds(status.st_mtim)).add("ctime", nanoseconds(status.st_ctim));
    return !S_ISDIR(status.st_mode);
}

/// What is told of a structure and of its members, wherever it is used.
struct Description
{
    explicit Description(const Structure& structure)
    {
        whole.addText("structure", structure.name()).addText("layout", layoutText(structure));
        for (const Member& member : structure)
        {
            JsonObject& object = members.emplace_back();
            object.addText("name", Member::name(&member)).addText("type", Member::typeName(Member::type(&member)));
            object.add("length", Member::length(&member));
        }
    }

    JsonObject whole;
    std::vector<JsonObject> members;
};

/// The lines of one file.
class FileLines
{
public:
    /// Borrows the output. The file's identity stands in the first line, and what `others` has of it in the others.
    FileLines(std::ostream& out, const JsonObject& identity, const JsonObject& others)
        : mOut(out),
          mIdentity(&identity),
          mOthers(others)
    {
    }

    void add(const char* kind, const JsonObject& members)
    {
        mOut << "{\"kind\": \"" << kind << "\", " << mIdentity->members() << ", " << members.members() << "}\n";
        mIdentity = &mOthers;
    }

    const Description& describe(const Structure& structure)
    {
        return mStructures.try_emplace(&structure, structure).first->second;
    }

private:
    std::ostream& mOut;
    const JsonObject* mIdentity; // of the next line
    const JsonObject& mOthers;
    std::map<const Structure*, Description> mStructures;
};

std::string membersOf(const Stream& stream, const Description& description)
{
    const std::vector<std::optional<Extremes>> extremes = extremesOf(stream);
    std::string members;
    for (std::size_t i = 0; i < extremes.size(); ++i)
    {
        JsonObject object = description.members[i];
        if (extremes[i])
            object.add("least", extremes[i]->least).add("greatest", extremes[i]->greatest);
        members.append(i == 0 ? "[{" : ", {").append(object.members()).append("}");
    }
    return members + ']';
}

void addNode(FileLines& lines, const std::string& node, const Associations& channels, const ByteCounts& bytes)
{
    std::vector<std::string> names;
    for (const Channel& channel : channels)
        names.push_back(vumo::codec::jsonText(channel.name()));
    lines.add("node", JsonObject().addText("node", node).add("channels", jsonArray(names)));
    for (const Channel& channel : channels)
    {
        for (const Stream* const stream : channel)
        {
            JsonObject members;
            members.addText("node", node).addText("channel", channel.name()).addText("stream", stream->name());
            const Description& description = lines.describe(stream->structure());
            members.add(description.whole).addText("indexType", stream->indexType());
            members.add("elements", stream->elementCount());
            const auto count = bytes.find({node, channel.name(), stream->name()});
            if (count != bytes.end()) // there is none of a kind of files that a plug-in brings
                members.add("bytes", count->second);
            lines.add("stream", members.add("members", membersOf(*stream, description)));
        }
    }
}

void addExternal(FileLines& lines, const SceneFile& scene)
{
    for (const ExternalEntry& entry : externalEntries(AccessorOvri::ExternalContent::getStream(scene.metadata())))
        lines.add("external", entry.json(scene.name()));
}

void addFault(FileLines& lines, const UnreadBlock& block)
{
    JsonObject members;
    members.addText("error", withoutLineEnd(block.why)).add("code", kBadInput);
    members.addText("block", block.kind == UnreadBlock::kStructure ? "structure" : "node");
    members.addText("name", block.name).addText("format", block.format);
    lines.add("fault", members.add("position", block.position).add("length", block.length));
}

/// All lines of a file that could be read.
void addAll(FileLines lines, const SceneFile& scene, const ByteCounts& bytes)
{
    const std::vector<UnreadBlock> unread = scene.metadata().unread();
    lines.add("file", JsonObject().add("code", kDone).add("faults", unread.size()));
    for (const Structure* const structure : scene.metadata().structures())
        lines.add("structure", lines.describe(*structure).whole);
    for (const auto& [node, channels] : scene.metadata().associations())
        addNode(lines, node, channels, bytes);
    addExternal(lines, scene);
    for (const UnreadBlock& block : unread)
        addFault(lines, block);
}

/// Borrows the names from the metadata.
ByteCounts byteCounts(const SceneFile& scene)
{
    ByteCounts bytes;
    for (const ListedBlock& block : scene.metadata().listed())
    {
        for (const ListedBlock::Channel& channel : block.channels)
        {
            for (const ListedBlock::Stream& stream : channel.streams)
                bytes[{block.name, channel.name, stream.name}] = stream.bytes;
        }
    }
    return bytes;
}

eExitCode scan(Job& job, bool isBrief)
{
    const JsonObject name = JsonObject().addText("file", job.file);
    JsonObject identity = name;
    const JsonObject& others = isBrief ? name : identity;
    const bool isFile = addIdentity(identity, job.file);
    try
    {
        SceneFile scene(job.session, job.file);
        scene.metadata().setListing(Accessor::kListRead);
        scene.read();
        identity.addText("tail", scene.tail());
        addAll(FileLines(job.out, identity, others), scene, byteCounts(scene));
        return kDone;
    }
    catch (const Failure& failure)
    {
        FileLines lines(job.out, identity, others);
        if (isFile)
            lines.add("file", JsonObject().add("code", std::to_string(failure.code())).add("faults", 1));
        lines.add(
            "fault",
            JsonObject().addText("error", withoutLineEnd(failure.what())).add("code", std::to_string(failure.code())));
        throw;
    }
}
} // namespace

void addScan(Session& session)
{
    Command command = session.addCommand("scan", "Tell what whole productions hold, as lines of JSON");
    session.addFiles(command, "scene files, and folders of them");
    const auto jobs = std::make_shared<unsigned int>(1);
    constexpr unsigned int kMostJobs = 256;
    command.addNumber("--jobs", *jobs, 1, kMostJobs, "N", "work on so many files at once, up to 256");
    const auto isBrief = std::make_shared<bool>(false);
    command.addFlag("--brief", *isBrief, "tell of a file's identity and times in its first line alone");
    session.setWork(command, [&session, jobs, isBrief] {
        Batch batch = batchOf(session);
        const std::vector<std::string> names = batch.files;
        batch.files = withoutFolders(names);
        batch.isSeveral = batch.isSeveral || batch.files != names;
        batch.areLinesLed = false;
        batch.jobs = *jobs;
        return forEachFile(session, batch, [brief = *isBrief](Job& job) { return scan(job, brief); });
    });
}
