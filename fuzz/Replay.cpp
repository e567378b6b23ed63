// Gives a target the files of the folders that are named, one after the other: a test, without a fuzzer.
#include "fuzz/Fuzz.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace
{
void replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    vumo::fuzz::require(!file.bad(), "cannot read " + path.string());
    std::cout << path.filename().string() << std::endl; // the last one named is the one that failed
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}
} // namespace

int main(int argc, char** argv)
{
    unsigned int count = 0;
    for (int i = 1; i < argc; ++i)
    {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
        {
            replay(entry.path());
            ++count;
        }
    }
    vumo::fuzz::require(count > 0, "there are no inputs");
    return 0;
}
