#pragma once

#include <string>
#include <vector>

/// How the names of files begin that are not what they are to become yet.
constexpr const char* kNewFileStart = ".vumo-";

/// The names with each folder among them replaced by the scene files in it and in the folders below it, in the order of
/// their names, byte by byte. Does not follow links to folders. A folder that cannot be read stays in the list.
std::vector<std::string> withoutFolders(const std::vector<std::string>& names);
