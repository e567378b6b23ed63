#include "core/OtherProgram.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

void runOtherProgram(const std::string& command, char** arguments)
{
    if (command.find('/') != std::string::npos) // that would be a path, and is no name of a command
        return;
    const std::string program = "vumo-" + command;
    std::error_code error; // where the system cannot tell which program this is, PATH is left
    const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
    execv((own.parent_path() / program).c_str(), arguments);
    execvp(program.c_str(), arguments);
}
