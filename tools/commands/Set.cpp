#include "commands/Commands.h"
#include "core/Batch.h"
#include "edit/Save.h"

#include <memory>

void addSet(Session& session)
{
    Command command = session.addCommand("set", "Change values of one element");
    std::vector<Word> words(Session::kAddress.begin(), Session::kAddress.end() - 1);
    words.push_back({"MEMBER=VALUE...", "a member's values, separated by blanks; MEMBER[i]=VALUE for one of them"});
    session.addFileAndWords(command, words, 0);
    session.addSaving(command);
    const auto edit = std::make_shared<Edit>();
    command.addFlag("--add", edit->add, "make what is missing on the path; INDEX and what follows may be left out");
    command.addOption("--structure", edit->structure, "TEXT",
                      "the structure of a new stream, such as \"name=Point:float[3]=Position:string=Label\", or the "
                      "name of one that the scene has");
    command.addOption("--index-type", edit->indexType, "TYPE",
                      "the type of a new stream's indices; numeric unless said");
    session.setWork(command, [&session, edit] {
        checkSaving(session);
        edit->words = session.words();
        edit->check();
        return forEachFile(session, [&edit](Job& job) { return makeEdits(job, {*edit}); });
    });
}
