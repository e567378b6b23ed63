#include "commands/Commands.h"
#include "edit/TransferCommand.h"

void addMv(Session& session)
{
    addTransfer(session, Edit::kMove, "mv", "Move or rename a node's metadata, a channel, a stream or an element");
}
