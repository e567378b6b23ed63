#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/ExternalContent.h"
#include "core/Lines.h"
#include "core/Text.h"
#include "edit/Save.h"
#include "vumo/accessor/AccessorOvri.h"

#include <memory>
#include <utility>
#include <vector>

using namespace vumo::Data;

namespace
{
using Table = AccessorOvri::ExternalContent;

/// What the command line says.
struct Request
{
    bool isMissing = false;
    std::vector<std::string> relinks; ///< OLD=NEW

    bool isRelink() const { return !relinks.empty(); }
};

void print(const std::vector<ExternalEntry>& entries, Job& job, bool hasTitles)
{
    std::vector<std::string> json;
    Lines lines(job);
    if (hasTitles && !job.json)
        lines.addTitles({"node", "key", "unresolvedPath", "resolvedPath", "roles"});
    for (const ExternalEntry& entry : entries)
    {
        std::string roles;
        for (const std::string& role : entry.roles)
            roles += (roles.empty() ? "" : ";") + role;
        if (job.json)
            json.push_back(entry.json(job.file).text());
        else
            lines.add({escaped(entry.node), escaped(entry.key), escaped(entry.unresolvedPath),
                       escaped(entry.resolvedPath), escaped(roles)});
    }
    if (job.json)
        job.json->add("content", jsonArray(json));
}

/// Replaces OLD at the start of the path, where it ends with a whole name.
bool relink(const std::string& rule, std::string& path)
{
    const std::string::size_type separator = rule.find('=');
    const std::string before = rule.substr(0, separator);
    if (path.compare(0, before.size(), before) != 0)
        return false;
    if (before.back() != '/' && path.size() > before.size() && path[before.size()] != '/')
        return false;
    path.replace(0, before.size(), rule.substr(separator + 1));
    return true;
}

/// Does what the first rule says that fits a path.
bool relink(const std::vector<std::string>& rules, std::string& path)
{
    for (const std::string& rule : rules)
    {
        if (relink(rule, path))
            return true;
    }
    return false;
}

eExitCode content(Job& job, const Request& request)
{
    SceneFile scene = request.isRelink() ? openToEdit(job, job.file) : SceneFile(job.session, job.file);
    scene.readNode(AccessorOvri::getSceneAssociationsName());
    const Stream* const table = Table::getStream(scene.metadata());
    if (!table)
        scene.tellUnreadable(job.session);
    if (!table && request.isRelink())
        throw scene.failure(kNo, "the scene has no table of external content");
    std::vector<ExternalEntry> found;
    for (StreamIterator element = table ? table->cbegin() : StreamIterator(); element.valid(); ++element)
    {
        ExternalEntry entry(element);
        const bool isPath = relink(request.relinks, entry.unresolvedPath);
        const bool isRelinked = relink(request.relinks, entry.resolvedPath) || isPath;
        if (request.isRelink() ? !isRelinked : request.isMissing && !entry.isMissing(job.file))
            continue;
        if (isRelinked &&
            !Table::setEntry(*element, entry.node, entry.key, entry.unresolvedPath, entry.resolvedPath, entry.roles))
            throw scene.failure(kNotWritten,
                                "the table of external content cannot hold " + inQuotes(entry.resolvedPath));
        found.push_back(std::move(entry));
    }
    if (request.isRelink() && !found.empty())
        save(job, scene); // first, as what is listed is changed then
    print(found, job, !request.isRelink());
    const bool isGood = request.isRelink() ? !found.empty() : !request.isMissing || found.empty();
    return isGood ? kDone : kNo;
}
} // namespace

void addContent(Session& session)
{
    Command command = session.addCommand("content", "List the content outside of scenes that they refer to");
    session.addFiles(command);
    session.addSaving(command);
    const auto request = std::make_shared<Request>();
    command.addFlag("--missing", request->isMissing, "list only what is not there; exit code 1 if there is any");
    command.addList("--relink", request->relinks, "OLD=NEW",
                    "put NEW in the place of OLD at the start of paths, save, and list what was changed");
    session.setWork(command, [&session, request] {
        checkSaving(session);
        for (const std::string& rule : request->relinks)
        {
            if (rule.find('=') == std::string::npos || rule[0] == '=')
                throw Failure(kWrongUsage, "--relink " + inQuotes(rule) + " is not of the form OLD=NEW");
        }
        return forEachFile(session, [&request](Job& job) { return content(job, *request); });
    });
}
