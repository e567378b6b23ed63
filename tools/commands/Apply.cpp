#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Text.h"
#include "edit/Save.h"
#include "edit/Script.h"

#include <memory>
#include <sstream>

namespace
{
std::vector<Edit> editsFrom(const Session& session, const std::string& name)
{
    std::istringstream script(session.readInput(name));
    return readScript(script, name == "-" ? "standard input" : escaped(name));
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
