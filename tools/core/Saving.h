#pragma once

#include <string>

/// What the options of a command that writes say about the saves; Session::addSaving() defines them.
struct Saving
{
    bool isDryRun = false;        ///< say what the save would cost, and write nothing
    std::string digits = "exact"; ///< or "six": of the numbers that are saved
    std::string tail;             ///< what SceneFile::tail() has to be; empty for anything
    std::string out;              ///< the file that gets the result in place of the one that was read; empty for none
};
