#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vumo::test
{
inline std::string bytesOf(const std::string& fileName)
{
    std::ifstream file(fileName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void setBytes(const std::string& fileName, const std::string& bytes)
{
    std::ofstream file(fileName, std::ios::binary | std::ios::trunc);
    ASSERT_TRUE(file << bytes << std::flush) << fileName;
}

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

    std::string bytes() const { return bytesOf(mName); }
    void setBytes(const std::string& bytes) const { test::setBytes(mName, bytes); }

    // The undo record that a write leaves beside the file when it is ended.
    std::string recordName() const { return mName + ".vumo-undo"; }
    bool hasRecord() const { return std::filesystem::exists(recordName()); }
    std::string record() const { return bytesOf(recordName()); }
    void setRecord(const std::string& bytes) const { test::setBytes(recordName(), bytes); }

private:
    std::string mName;
};
} // namespace vumo::test
