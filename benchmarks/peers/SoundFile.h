#pragma once

#include <string>
#include <vector>

namespace bench
{
/// A WAV file of nearly 4 GiB in the directory for temporary files, its samples a hole; removed with the object. TagLib
/// reads and writes its tags.
class SoundFile
{
public:
    /// A tag for each text.
    explicit SoundFile(const std::vector<std::string>& texts);
    SoundFile(const SoundFile&) = delete;
    SoundFile& operator=(const SoundFile&) = delete;
    ~SoundFile();

    /// Opens the file, replaces the i-th text, saves and closes it.
    void edit(unsigned int i, const std::string& text) const;

    std::vector<std::string> texts() const;

private:
    std::string mName;
};
} // namespace bench
