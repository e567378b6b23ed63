#include "benchmarks/ScratchFile.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

namespace bench
{
ScratchFile::ScratchFile(const std::string& extension)
{
    static int theCount = 0;
    const std::string name =
        "vumo_bench_" + std::to_string(getpid()) + "_" + std::to_string(++theCount) + "." + extension;
    mName = (std::filesystem::temp_directory_path() / name).string();
}

ScratchFile::~ScratchFile()
{
    std::error_code ignored;
    std::filesystem::remove(mName, ignored);
}
} // namespace bench
