#include "edit/TransferCommand.h"

#include "core/Text.h"
#include "edit/HeldScene.h"
#include "edit/Save.h"
#include "edit/Script.h"
#include "edit/Selected.h"
#include "edit/Transfer.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace
{
/// What the command line says.
struct Request
{
    Edit edit;
    std::string merge = "fail";
    std::string toFile; ///< empty for the same one
};

Failure withNote(const Failure& failure, const std::string& note)
{
    return {failure.code(), withoutLineEnd(failure.what()) + "\n" + note};
}

/// Saves the scene with the nodes as they were again.
void putBack(const vumo::codec::Metadata& before, SceneFile& scene, const std::string& goal)
{
    try
    {
        for (const auto& [node, channels] : before.nodes)
            scene.metadata().associations()[node] = channels;
        scene.write();
    }
    catch (const Failure& failure)
    {
        throw withNote(failure, "It was moved to " + goal +
                                    ", which somebody else has replaced, and could not be put "
                                    "back.");
    }
}

/// Saves the scene without what is in the other one by now. `before` is what it had at first.
void saveMoved(const Job& job, SceneFile& from, const vumo::codec::Metadata& before, const SceneFile& to)
{
    std::optional<HeldScene> held;
    bool isRemoved = false;
    try
    {
        held.emplace(job.session, to);
        isRemoved = held->isThere();
        if (isRemoved)
            save(job, from);
    }
    catch (const Failure& failure)
    {
        throw withNote(failure, "It is in " + to.name() + " by now, and here, too.");
    }
    if (isRemoved && held->isThere())
        return;
    if (isRemoved) // whoever replaces a file asks for no lock
        putBack(before, from, to.name());
    throw to.failure(kBusy, "somebody else has changed or replaced it meanwhile; nothing was moved, " +
                                escaped(job.file) + " has it still");
}

/// Copies or moves from one file to another. What is moved is saved there before it is removed here.
eExitCode transferBetween(const Job& job, const Edit& edit, const std::string& toFile)
{
    const bool isMove = edit.verb == Edit::kMove;
    std::error_code ignored;
    if (std::filesystem::equivalent(job.file, toFile, ignored))
        throw WrongForFile(escaped(job.file) +
                           ": --to names the same file; without it something is copied or moved within one");
    SceneFile from = isMove ? openToEdit(job, job.file) : SceneFile(job.session, job.file);
    const Address node({edit.from().node});
    from.readNode(node.node);
    const vumo::codec::Metadata before = selected(from, Selection(), &node);
    SceneFile to = openToEdit(job, toFile);
    to.readNode(edit.to().node);
    transfer(edit, from, to);
    save(job, to);
    if (isMove && job.session.saving().isDryRun)
        save(job, from);
    else if (isMove)
        saveMoved(job, from, before, to);
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
    constexpr int kMostWords = 5; // one more than an address has, so that the list is open still when "--" comes
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
