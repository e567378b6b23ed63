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
    ScratchLocale(const std::string& directory, const std::string& encoding)
        : mDirectory(directory),
          mPathBefore(pathOfLocales()),
          mBefore(std::setlocale(LC_ALL, nullptr))
    {
        std::filesystem::create_directories(directory);
        const std::string name = directory + "/" + encoding;
        const std::string command = "localedef -i en_US -f " + encoding + " '" + name + "' >/dev/null 2>&1";
        setPathOfLocales(directory);
        mIsSet = std::system(command.c_str()) >= 0 && std::setlocale(LC_ALL, encoding.c_str()) != nullptr;
    }

    ScratchLocale(const ScratchLocale&) = delete;
    ScratchLocale& operator=(const ScratchLocale&) = delete;

    ~ScratchLocale()
    {
        setPathOfLocales(mPathBefore);
        std::setlocale(LC_ALL, mBefore.c_str());
        std::filesystem::remove_all(mDirectory);
    }

    /// False where there is no localedef, or no such encoding.
    bool isSet() const { return mIsSet; }

private:
    static constexpr const char* kPathVariable = "LOCPATH";

    static std::string pathOfLocales()
    {
        const char* const path = std::getenv(kPathVariable);
        return path ? path : "";
    }

    static void setPathOfLocales(const std::string& path)
    {
        if (path.empty())
            unsetenv(kPathVariable);
        else
            setenv(kPathVariable, path.c_str(), 1);
    }

    std::string mDirectory;
    std::string mPathBefore;
    std::string mBefore;
    bool mIsSet = false;
};
} // namespace vumo::test
