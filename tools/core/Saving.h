#pragma once

#include <string>

/// What the options of a command that writes say about the saves; Session::addSaving() defines them.
struct Saving
{
    bool isDryRun = false; ///< say what the save would cost, and write nothing
    std::string out;       ///< the file that gets the result in place of the one that was read; empty for none
};
