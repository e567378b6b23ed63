#include "commands/Commands.h"
#include "core/Batch.h"
#include "edit/Save.h"
#include "edit/Script.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

namespace
{
std::vector<Edit> editsFrom(const Session& session, const std::string& name)
{
    if (name == "-")
        return readScript(session.input(), "standard input");
    std::ifstream file(name, std::ios::binary);
    if (!file)
        throw Failure(kBadInput, name + ": " + std::strerror(errno));
    return readScript(file, name);
}
} // namespace

void addApply(Session& session)
{
    Command command =
        session.addCommand("apply", "Make the edits of a script in each file, all or none of them, with one save");
    const auto script = std::make_shared<std::string>();
    command.addWord({"SCRIPT", "lines in the words of set, rm, cp and mv, without FILE, split as a shell splits words, "
                               "or JSON arrays of the words; \"-\" for standard input"},
                    *script);
    session.addFiles(command);
    session.addSaving(command);
    session.setWork(command, [&session, script] {
        checkSaving(session);
        const std::vector<Edit> edits = editsFrom(session, *script);
        return forEachFile(session, [&edits](Job& job) { return makeEdits(job, edits); });
    });
}
