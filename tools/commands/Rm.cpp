#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Text.h"
#include "edit/Save.h"
#include "vumo/accessor/Accessor.h"

#include <unistd.h>

#include <memory>

namespace
{
/// Files that stand in a row would be taken for a node's address.
void checkForFiles(const Edit& edit)
{
    if (edit.removesStructures() && !edit.words.empty() && vumo::Data::Accessor::accessorByExtension(edit.words[0]) &&
        access(edit.words[0].c_str(), F_OK) == 0)
        throw Failure(kWrongUsage, inQuotes(edit.words[0]) + " stands where a NODE would; --files-from takes several "
                                                             "files");
}
} // namespace

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
        checkForFiles(*edit);
        return forEachFile(session, [&edit](Job& job) { return makeEdits(job, {*edit}); });
    });
}
