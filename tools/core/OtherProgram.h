#pragma once

#include <string>

/// Runs `vumo-COMMAND` in place of this program, with the words after the command: from the folder that this program is
/// in, or else from PATH. So the package for Python adds `vumo catalog` and `vumo campaign`. Returns when there is no
/// such program.
void runOtherProgram(const std::string& command, char** arguments);
