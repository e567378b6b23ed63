#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace vumo::test
{
/// The locale of the C library while it lives: one of that encoding, made for the test.
class ScratchLocale
{
public:
    ScratchLocale(const std::string& directory, const std::string& encoding) : mBefore(std::setlocale(LC_ALL, nullptr))
    {
        std::filesystem::create_directories(directory);
        const std::string command =
            "localedef -i en_US -f " + encoding + " '" + directory + "/" + encoding + "' >/dev/null 2>&1";
        setenv("LOCPATH", directory.c_str(), 1);
        mIsSet = std::system(command.c_str()) >= 0 && std::setlocale(LC_ALL, encoding.c_str()) != nullptr;
        std::filesystem::remove_all(directory);
    }

    ScratchLocale(const ScratchLocale&) = delete;
    ScratchLocale& operator=(const ScratchLocale&) = delete;

    ~ScratchLocale()
    {
        unsetenv("LOCPATH");
        std::setlocale(LC_ALL, mBefore.c_str());
    }

    /// False where there is no localedef, or no such encoding.
    bool isSet() const { return mIsSet; }

private:
    std::string mBefore;
    bool mIsSet = false;
};
} // namespace vumo::test
