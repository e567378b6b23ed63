#pragma once

#include "tests/support/ScratchFolder.h"

#include <clocale>
#include <cstdlib>
#include <string>

namespace vumo::test
{
/// The locale of the C library while it lives: one of that encoding, made for the test.
class ScratchLocale
{
public:
    explicit ScratchLocale(const std::string& encoding)
        : mPathBefore(pathOfLocales()),
          mBefore(std::setlocale(LC_ALL, nullptr))
    {
        const std::string command =
            "localedef -i en_US -f " + encoding + " '" + mFolder / encoding + "' >/dev/null 2>&1";
        setPathOfLocales(mFolder.name());
        mIsSet = std::system(command.c_str()) >= 0 && std::setlocale(LC_ALL, encoding.c_str()) != nullptr;
    }

    ScratchLocale(const ScratchLocale&) = delete;
    ScratchLocale& operator=(const ScratchLocale&) = delete;

    ~ScratchLocale()
    {
        setPathOfLocales(mPathBefore);
        std::setlocale(LC_ALL, mBefore.c_str());
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

    ScratchFolder mFolder;
    std::string mPathBefore;
    std::string mBefore;
    bool mIsSet = false;
};
} // namespace vumo::test
