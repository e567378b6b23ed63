#include "commands/Commands.h"
#include "core/Batch.h"
#include "edit/Save.h"

#include <memory>

void addRm(Session& session)
{
    Command command =
        session.addCommand("rm", "Remove a node's metadata, a channel, a stream or an element, or unused structures");
    session.addFileAndWords(command, {Session::kAddress.begin(), Session::kAddress.end() - 1}, 0);
    session.addSaving(command);
    const auto edit = std::make_shared<Edit>();
    edit->verb = Edit::kRemove;
    command.addList("--structure", edit->structures, "NAME", "remove this structure, which no stream may use");
    command.addFlag("--unused", edit->allUnused,
                    "remove all structures that no stream uses any more; where a node cannot be read, none is removed");
    session.setWork(command, [&session, edit] {
        checkSaving(session);
        edit->words = session.words();
        edit->check();
        return forEachFile(session, [&edit](Job& job) { return makeEdits(job, {*edit}); });
    });
}
