#pragma once

#include <string>

namespace bench
{
/// The name of a file in the directory for temporary files. Whatever stands there is removed with the object.
class ScratchFile
{
public:
    /// The file does not exist yet.
    explicit ScratchFile(const std::string& extension);
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile();

    const std::string& name() const { return mName; }

private:
    std::string mName;
};
} // namespace bench
