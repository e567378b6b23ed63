#include "commands/Commands.h"

#include <initializer_list>

void addCommands(Session& session)
{
    for (const auto add : {addLs, addShow, addGet, addScan, addSet, addRm, addCp, addMv, addApply})
        add(session);
}
