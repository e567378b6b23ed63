#include "commands/Commands.h"
#include "edit/TransferCommand.h"

void addCp(Session& session)
{
    addTransfer(session, Edit::kCopy, "cp", "Copy a node's metadata, a channel, a stream or an element");
}
