#include "commands/Commands.h"
#include "core/Batch.h"
#include "edit/Save.h"

void addRm(Session& session)
{
    Command command = session.addCommand("rm", "Remove a node's metadata, a channel, a stream or an element");
    session.addFileAndWords(command, {Session::kAddress.begin(), Session::kAddress.end() - 1}, 1);
    session.addSaving(command);
    session.setWork(command, [&session] {
        checkSaving(session);
        Edit edit;
        edit.verb = Edit::kRemove;
        edit.words = session.words();
        edit.check();
        return forEachFile(session, [&edit](Job& job) { return makeEdits(job, {edit}); });
    });
}
