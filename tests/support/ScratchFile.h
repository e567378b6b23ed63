#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace vumo::test
{
/// A file for one test, removed with the object.
class ScratchFile
{
public:
    /// The name ends with `ending`, as ".ob"; the file does not exist yet.
    explicit ScratchFile(const std::string& ending)
    {
        static int theCount = 0;
        mName = testing::TempDir() + "vumo_" + std::to_string(getpid()) + "_" + std::to_string(++theCount) + ending;
    }

    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { std::remove(mName.c_str()); }

    const std::string& name() const { return mName; }

    std::string bytes() const
    {
        std::ifstream file(mName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    void setBytes(const std::string& bytes) const
    {
        std::ofstream file(mName, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        ASSERT_TRUE(file.flush()) << mName;
    }

private:
    std::string mName;
};
} // namespace vumo::test
