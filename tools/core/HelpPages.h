#pragma once

#include <string>

namespace CLI
{
class App;
}

/// What `vumo --help` and `vumo COMMAND --help` say, made from the same definitions, as a page or a script: "man" for
/// the manual, "markdown" for docs/tool.md, "bash" for completion. Without a newline at the end.
std::string helpAs(const CLI::App& commandLine, const std::string& form);
