#include "edit/TransferCommand.h"

#include "core/Text.h"
#include "edit/Save.h"
#include "edit/Script.h"
#include "edit/Transfer.h"

#include <filesystem>
#include <memory>
#include <set>

namespace
{
/// What the command line says.
struct Request
{
    Edit edit;
    std::string merge = "fail";
    std::string toFile; ///< empty for the same one
};

/// Sees that what was saved stands there still, when it has been removed elsewhere.
void expectUnchanged(const Job& job, const SceneFile& saved)
{
    SceneFile now(job.session, saved.name());
    const std::set<std::string> none;
    now.read(&none);
    if (now.tail() != saved.tail())
        throw saved.failure(kBusy, "somebody else has changed it meanwhile; see whether it has what was moved, which " +
                                       escaped(job.file) + " has no more");
}

/// Copies or moves from one file to another. What is moved is saved there before it is removed here.
eExitCode transferBetween(const Job& job, const Edit& edit, const std::string& toFile)
{
    const bool isMove = edit.verb == Edit::kMove;
    std::error_code ignored;
    if (std::filesystem::equivalent(job.file, toFile, ignored))
        throw Failure(kWrongUsage, "--to names the same file; without it something is copied or moved within one");
    SceneFile from = isMove ? openToEdit(job, job.file) : SceneFile(job.session, job.file);
    from.readNode(edit.from().node);
    SceneFile to = openToEdit(job, toFile);
    to.readNode(edit.to().node);
    transfer(edit, from, to);
    save(job, to);
    try
    {
        if (isMove)
            save(job, from);
    }
    catch (const Failure& failure)
    {
        throw Failure(failure.code(), std::string(failure.what()) + "\nIt is in " + toFile + " by now, and here, too.");
    }
    if (isMove && !job.session.saving().isDryRun)
        expectUnchanged(job, to);
    return kDone;
}

eExitCode work(Session& session, Request& request)
{
    const bool isToOther = !request.toFile.empty();
    request.edit.words = session.words();
    request.edit.merge = mergeOf(request.merge);
    request.edit.check(isToOther);
    checkSaving(session, isToOther && request.edit.verb == Edit::kMove);
    return forEachFile(session, [&](Job& job) {
        return isToOther ? transferBetween(job, request.edit, request.toFile) : makeEdits(job, {request.edit});
    });
}
} // namespace

void addTransfer(Session& session, Edit::eVerb verb, const std::string& name, const std::string& description)
{
    Command command = session.addCommand(name, description);
    session.addFileAndWords(command, {Session::kAddress.begin(), Session::kAddress.end() - 1}, 1);
    session.addSaving(command);
    const auto request = std::make_shared<Request>();
    request->edit.verb = verb;
    constexpr int kMostWords = 4;
    command.addList("--as", request->edit.newWords, "WORD...",
                    "the new address, or its last words; stands after the address. A word that begins with \"-\" is "
                    "given as --as=WORD",
                    kMostWords);
    command.addOption("--to", request->toFile, "FILE",
                      "to this scene, of either kind; under the same address without --as");
    command.addOption("--merge", request->merge, "keep|replace|fail",
                      "what becomes of a stream or an element that is there already");
    session.setWork(command, [&session, request] { return work(session, *request); });
}
