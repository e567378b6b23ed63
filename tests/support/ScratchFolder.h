#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace vumo::test
{
/// A directory for one test, removed with all that is in it.
class ScratchFolder
{
public:
    ScratchFolder()
    {
        static int theCount = 0;
        mName = testing::TempDir() + "vumo_" + std::to_string(getpid()) + "_" + std::to_string(++theCount);
        std::filesystem::create_directory(mName);
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    ~ScratchFolder()
    {
        std::filesystem::permissions(mName, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(mName);
    }

    const std::string& name() const { return mName; }
    std::string operator/(const std::string& file) const { return mName + "/" + file; }

private:
    std::string mName;
};
} // namespace vumo::test
