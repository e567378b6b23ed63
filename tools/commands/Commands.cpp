#include "commands/Commands.h"

#include <initializer_list>

void addCommands(Session& session)
{
    for (const auto add : {addLs, addShow, addGet, addCheck, addScan, addDiff, addExport, addFormats, addSet, addRm,
                           addCp, addMv, addApply, addImport, addContent, addRecover})
        add(session);
}
