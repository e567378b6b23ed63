#include "commands/Commands.h"
#include "core/Session.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    try
    {
        // The C locale stays in force: texts then pass to and from the file byte for byte, in its UTF-8.
        Session session;
        addCommands(session);
        return session.run(argc, argv);
    }
    catch (const std::exception& error) // no memory for the commands, or for saying what went wrong
    {
        std::fprintf(stderr, "vumo: %s\n", error.what());
        return kBadInput;
    }
}
