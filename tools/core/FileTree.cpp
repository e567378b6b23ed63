#include "core/FileTree.h"

#include "vumo/accessor/Accessor.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace
{
namespace fs = std::filesystem;

bool isScene(const std::string& name)
{
    if (name.rfind(kNewFileStart, 0) == 0)
        return false; // what an edit with -o leaves that was killed
    return name.find('.') != std::string::npos && vumo::Data::Accessor::accessorByExtension(name);
}

void addFolder(const std::string& folder, std::vector<std::string>& files)
{
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        entries.push_back(*entry);
    if (error)
        return files.push_back(folder);
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries)
    {
        const std::string path = entry.path().string();
        if (!entry.is_symlink(error) && entry.is_directory(error)) // as the folder tells: the entry is not looked up
            addFolder(path, files);
        else if (isScene(entry.path().filename().string()))
            files.push_back(path);
    }
}
} // namespace

std::vector<std::string> withoutFolders(const std::vector<std::string>& names)
{
    std::vector<std::string> files;
    for (const std::string& name : names)
    {
        std::error_code ignored;
        if (fs::is_directory(name, ignored))
            addFolder(name, files);
        else
            files.push_back(name);
    }
    return files;
}
