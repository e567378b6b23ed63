#include "commands/Commands.h"
#include "core/BlockText.h"
#include "core/ExternalContent.h"
#include "core/Rows.h"
#include "core/SceneFile.h"
#include "core/Text.h"
#include "vumo/accessor/AccessorOvri.h"
#include "vumo/accessor/OvriAsciiFileAccessor.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <tuple>

using namespace vumo::Data;
namespace fs = std::filesystem;

namespace
{
struct Rule
{
    const char* code;
    const char* name;
    const char* finding;
};

constexpr Rule kContainer = {"V01", "container", "the file is no scene of its kind, or its end is damaged"};
constexpr Rule kUndoRecord = {"V02", "undo-record",
                              "a save was interrupted; nothing else is looked at before it is repaired"};
constexpr Rule kUnreadable = {"V03", "unreadable", "a structure or the metadata of a node cannot be read"};
constexpr Rule kTwoLayouts = {"V04", "two-layouts", "structures of one name differ, in the file or from one before it"};
constexpr Rule kTwoBlocks = {"V05", "two-blocks",
                             "a structure or a node stands in the file twice, and one is passed over"};
constexpr Rule kUnused = {"V06", "unused", "no stream uses the structure; rm --unused removes it"};
constexpr Rule kRefused = {"V07", "refused", "a save with exact numbers would be refused"};
constexpr Rule kMissing = {"V08", "missing-content", "there is nothing at the path of an entry of external content"};

constexpr Rule kTwoElements = {"V09", "two-elements",
                               "an index stands twice in a stream, and all but the last are passed over"};

constexpr Rule kUnseen = {
    "V10", "unseen",
    "metadata stand above the last statement of the host in an ASCII scene, in the MiB before it: "
    "nobody reads or replaces them"};

constexpr Rule kRules[] = {kContainer, kUndoRecord, kUnreadable, kTwoLayouts,  kTwoBlocks,
                           kUnused,    kRefused,    kMissing,    kTwoElements, kUnseen};

struct Finding
{
    std::string code;
    std::string kind; ///< of what it is about: file, structure, node or content
    std::string name;
    std::string text;
    BlockPlace place; ///< of the fault in a block, as far as it is known

    bool operator<(const Finding& other) const
    {
        return std::tie(code, kind, name, text) < std::tie(other.code, other.kind, other.name, other.text);
    }
};

using Findings = std::set<Finding>;

/// The first layout that a structure's name had in this run, and where.
using Layouts = std::map<std::string, std::pair<std::string, std::string>>;

const char* kindOf(const MetadataBlock& block)
{
    return block.kind == MetadataBlock::kStructure ? "structure" : "node";
}

void findUnreadable(const SceneFile& scene, Findings& findings)
{
    for (const UnreadBlock& block : scene.metadata().unread())
    {
        findings.insert({kUnreadable.code, kindOf(block), block.name, block.why.substr(0, block.why.find('\n')),
                         placeOfFault(scene, block)});
    }
}

/// Blocks of one name. Those of structures are two layouts unless they are the same byte by byte.
void findTwice(const SceneFile& scene, const std::vector<ListedBlock>& blocks, Findings& findings)
{
    std::map<std::pair<std::string, std::string>, const ListedBlock*> known;
    for (const ListedBlock& block : blocks)
    {
        const auto [first, isNew] = known.emplace(std::make_pair(kindOf(block), block.name), &block);
        if (isNew)
            continue;
        const bool isLayout =
            block.kind == MetadataBlock::kStructure && blockBytes(scene, block) != blockBytes(scene, *first->second);
        findings.insert({isLayout ? kTwoLayouts.code : kTwoBlocks.code,
                         kindOf(block),
                         block.name,
                         isLayout ? "has two layouts in this file" : "stands twice in this file",
                         {}});
    }
}

/// Streams that were read with fewer elements than their text has.
void findTwoElements(const SceneFile& scene, const ListedBlock& block, Findings& findings)
{
    const auto node = scene.metadata().associations().find(block.name);
    if (block.kind == MetadataBlock::kStructure || node == scene.metadata().associations().end())
        return;
    for (const ListedBlock::Channel& listed : block.channels)
    {
        const Channel* const channel = node->second.findChannel(listed.name);
        for (const ListedBlock::Stream& text : listed.streams)
        {
            const Stream* const stream = channel ? channel->findDataStream(text.name) : nullptr;
            if (stream && stream->elementCount() < text.elements)
                findings.insert({kTwoElements.code,
                                 kindOf(block),
                                 block.name,
                                 "channel " + inQuotes(listed.name) + ", stream " + inQuotes(text.name) + ": " +
                                     std::to_string(text.elements) + " elements have " +
                                     std::to_string(stream->elementCount()) + " indices",
                                 {}});
        }
    }
}

void findOtherLayouts(const SceneFile& scene, Layouts& layouts, Findings& findings)
{
    for (const Structure* const structure : scene.metadata().structures())
    {
        const std::string layout = layoutText(*structure);
        const auto [first, isNew] = layouts.emplace(structure->name(), std::make_pair(layout, scene.name()));
        if (first->second.first != layout)
            findings.insert({kTwoLayouts.code,
                             "structure",
                             structure->name(),
                             "is " + layout + " and in " + first->second.second + " " + first->second.first,
                             {}});
    }
}

void findUnused(const std::vector<ListedBlock>& blocks, Findings& findings)
{
    std::set<std::string> used;
    for (const ListedBlock& block : blocks)
    {
        for (const ListedBlock::Channel& channel : block.channels)
        {
            for (const ListedBlock::Stream& stream : channel.streams)
                used.insert(stream.structure);
        }
    }
    for (const ListedBlock& block : blocks)
    {
        if (block.kind == MetadataBlock::kStructure && used.count(block.name) == 0)
            findings.insert({kUnused.code, "structure", block.name, "is used by no stream", {}});
    }
}

/// The messages of a save that is only tried, a finding each, but for those that only count others.
void findRefused(const SceneFile& scene, Findings& findings)
{
    using Kind = Accessor::Failure;
    Accessor::WriteCost cost;
    std::string errors;
    if (scene.metadata().estimateWrite(cost, errors))
        return;
    const Kind::eKind kind = scene.metadata().failure().kind;
    if (kind != Kind::kRefused && kind != Kind::kNotScene && kind != Kind::kMalformed)
        return;
    std::istringstream lines(errors);
    for (std::string line; std::getline(lines, line);)
    {
        if (std::isdigit(static_cast<unsigned char>(line[0])) == 0)
            findings.insert({kRefused.code, "file", "", line, {}});
    }
}

void findMissing(const SceneFile& scene, Findings& findings)
{
    for (const ExternalEntry& entry : externalEntries(AccessorOvri::ExternalContent::getStream(scene.metadata())))
    {
        if (entry.isMissing(scene.name()))
            findings.insert({kMissing.code,
                             "content",
                             entry.node,
                             "refers by " + inQuotes(entry.key) + " to " +
                                 inQuotes(entry.resolvedPath.empty() ? entry.unresolvedPath : entry.resolvedPath) +
                                 ", which is not there",
                             {}});
    }
}

/// Statements that begin in front of what was listed, which is all that reading comes by.
void findUnseen(const SceneFile& scene, const std::vector<ListedBlock>& blocks, Findings& findings)
{
    constexpr std::uint64_t kMostBefore = 1U << 20U; // a scene may have gigabytes that are none of it
    if (!dynamic_cast<const OvriAsciiFileAccessor*>(&scene.metadata()))
        return;
    std::error_code ignored;
    const std::uint64_t end = blocks.empty() ? fs::file_size(scene.name(), ignored) : blocks.front().position;
    MetadataBlock before;
    before.length = std::min(end, kMostBefore);
    before.position = end - before.length;
    std::istringstream lines(blockBytes(scene, before));
    std::string line;
    if (before.position > 0)
        std::getline(lines, line); // maybe not the whole of it
    std::size_t count = 0;
    while (std::getline(lines, line))
    {
        for (const std::string& command :
             {AccessorOvri::Ascii::getDataStructureCommandName(), AccessorOvri::Ascii::getApplyMetadataCommandName()})
            count += line.compare(0, command.size(), command) == 0 ? 1 : 0;
    }
    if (count > 0)
        findings.insert({kUnseen.code,
                         "file",
                         "",
                         "metadata statements above the last line of the host: " + std::to_string(count),
                         {}});
}

Findings findAll(SceneFile& scene, Layouts& layouts)
{
    Findings findings;
    if (!SceneFile::undoRecordOf(scene.name()).empty()) // to read the file would repair it
        return {{kUndoRecord.code, "file", "", "a save was interrupted; vumo recover repairs the file", {}}};
    std::vector<ListedBlock> blocks;
    try
    {
        blocks = scene.list();
        scene.read();
    }
    catch (const Failure& failure)
    {
        const Accessor::Failure::eKind kind = scene.metadata().failure().kind;
        if (kind != Accessor::Failure::kNotScene && kind != Accessor::Failure::kMalformed)
            throw;
        std::string text = withoutLineEnd(failure.what());
        const std::string name = escaped(scene.name()) + ": ";
        text.erase(0, text.compare(0, name.size(), name) == 0 ? name.size() : 0);
        return {{kContainer.code, "file", "", text, {}}};
    }
    findUnreadable(scene, findings);
    findTwice(scene, blocks, findings);
    for (const ListedBlock& block : blocks)
        findTwoElements(scene, block, findings);
    findOtherLayouts(scene, layouts, findings);
    findUnused(blocks, findings);
    findRefused(scene, findings);
    findMissing(scene, findings);
    findUnseen(scene, blocks, findings);
    return findings;
}

/// What all files of a run have in common.
struct Run
{
    Layouts layouts;
    std::size_t files = 0;
    std::size_t sound = 0;
};

eExitCode check(Job& job, Run& run)
{
    ++run.files;
    SceneFile scene(job.session, job.file);
    const Findings findings = findAll(scene, run.layouts);
    run.sound += findings.empty() ? 1 : 0;
    if (findings.empty() && !job.json)
        return kDone; // without titles over nothing
    Rows rows(job, "findings", {"rule", "kind", "name", "text", "line", "excerpt"});
    for (const Finding& finding : findings)
    {
        const bool hasPlace = finding.place.line > 0;
        rows.add({finding.code, finding.kind, finding.name, finding.text,
                  hasPlace ? Rows::Cell(finding.place.line) : Rows::Cell(),
                  hasPlace ? Rows::Cell(finding.place.text) : Rows::Cell()});
    }
    return findings.empty() ? kDone : kNo;
}

/// For people, who would see nothing else of scenes in which nothing is found.
void tellSound(Session& session, const Run& run)
{
    session.flushForPeople();
    if (StandardOutput::isTerminal() && run.sound > 0)
        session.say(run.files == 1
                        ? "the scene is sound"
                        : std::to_string(run.sound) + " of " + std::to_string(run.files) + " scenes are sound");
}

eExitCode listRules(Session& session)
{
    return once(session, [](Job& job) {
        Rows rows(job, "rules", {"rule", "name", "finding"});
        for (const Rule& rule : kRules)
            rows.add({rule.code, rule.name, rule.finding});
        return kDone;
    });
}
} // namespace

void addCheck(Session& session)
{
    Command command = session.addCommand("check", "Find what is wrong with scenes, a line for each finding");
    session.addFiles(command);
    session.addJson(command);
    const auto isListing = std::make_shared<bool>(false);
    command.addFlagForWord("--rules", *isListing, "list the rules with their codes");
    session.setWork(command, [&session, isListing] {
        if (*isListing)
            return listRules(session);
        Run run;
        const eExitCode code = forEachFile(session, [&run](Job& job) { return check(job, run); });
        tellSound(session, run);
        return code;
    });
}
