#include "commands/Commands.h"
#include "core/Session.h"

int main(int argc, char** argv)
{
    // The C locale stays in force: texts then pass to and from the file byte for byte, in its UTF-8.
    Session session;
    addCommands(session);
    return session.run(argc, argv);
}
