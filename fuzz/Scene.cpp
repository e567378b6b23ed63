#include "fuzz/Scene.h"

#include "fuzz/Fuzz.h"
#include "vumo/accessor/Accessor.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <utility>

namespace vumo::fuzz
{
namespace
{
/// A file of this process alone, in memory where the system has such a place.
class SceneFile
{
public:
    explicit SceneFile(const std::string& ending)
    {
        const std::filesystem::path memory = "/dev/shm";
        const std::filesystem::path folder = is_directory(memory) ? memory : std::filesystem::temp_directory_path();
        mName = (folder / ("vumo_fuzz_" + std::to_string(getpid()) + ending)).string();
    }

    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;
    ~SceneFile() { std::remove(mName.c_str()); }

    const std::string& name() const { return mName; }

    void setBytes(const std::string& bytes) const
    {
        std::ofstream file(mName, std::ios::binary | std::ios::trunc);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        require(static_cast<bool>(file.flush()), "cannot write " + mName);
    }

    std::string bytes() const
    {
        std::ifstream file(mName, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::string mName;
};

SceneFile& fileOf(const std::string& ending, const std::string& bytes)
{
    static std::map<std::string, SceneFile> theFiles;
    SceneFile& file = theFiles.try_emplace(ending, ending).first->second;
    file.setBytes(bytes);
    return file;
}

using Metadata = std::pair<std::set<std::string>, std::map<std::string, std::string>>;

/// The names of the structures, and the text of the associations of each node where it says anything: associations
/// without channels are not written, nor are channels without streams.
Metadata metadataOf(const Data::Accessor& accessor)
{
    std::string nothing;
    textOf(Data::Associations(), nothing);
    Metadata metadata;
    for (const Data::Structure* const structure : accessor.structures())
        metadata.first.insert(structure->name());
    for (const auto& [node, associations] : accessor.associations())
    {
        std::string text;
        textOf(associations, text);
        if (text != nothing)
            metadata.second[node] = text;
    }
    return metadata;
}
/// What is in a file: the metadata that can be read, and the bytes of the rest.
using Contents = std::pair<Metadata, std::set<std::string>>;

/// Reads the file so that it keeps what is not read; null when it is damaged.
std::unique_ptr<Data::Accessor> keepingReader(const SceneFile& file, const std::set<std::string>* nodes)
{
    std::string errors;
    std::unique_ptr<Data::Accessor> accessor = Data::Accessor::accessorByExtension(file.name());
    accessor->setUnread(Data::Accessor::kKeep);
    const bool isRead = accessor->read(file.name(), nullptr, nodes, errors);
    require(isRead == errors.empty(), "what is only left unread is told as an error: " + errors);
    return isRead ? std::move(accessor) : nullptr;
}

Contents contentsOf(const SceneFile& file)
{
    const std::unique_ptr<Data::Accessor> accessor = keepingReader(file, nullptr);
    require(accessor != nullptr, "a file that was written is damaged");
    const std::string bytes = file.bytes();
    std::set<std::string> unread;
    for (const Data::UnreadBlock& block : accessor->unread())
        unread.insert(bytes.substr(block.position, block.length));
    return {metadataOf(*accessor), unread};
}

/// Writes a file of which only some nodes were read: nothing of the others changes, nor what cannot be read.
void rewriteInPart(const SceneFile& file, const std::string& before, const std::set<std::string>* nodes)
{
    file.setBytes(before);
    const std::unique_ptr<Data::Accessor> accessor = keepingReader(file, nodes);
    if (!accessor)
        return;
    const Contents contents = contentsOf(file);
    std::string errors;
    if (!accessor->write(errors))
    {
        require(file.bytes() == before, "a write that failed changed the file: " + errors);
        return;
    }
    require(contentsOf(file) == contents, "what was kept changed when the file was written");
    const std::string written = file.bytes();
    require(accessor->write(errors) && file.bytes() == written, "writing again changes the file: " + errors);
}
} // namespace

void readScene(const char* ending, const std::uint8_t* data, std::size_t size)
{
    const SceneFile& file = fileOf(ending, textOf(data, size));
    std::string errors;
    const std::unique_ptr<Data::Accessor> accessor = Data::Accessor::accessorByExtension(file.name());
    const bool isRead = accessor->read(file.name(), errors);
    require(isRead || !errors.empty(), "a scene is refused without a word");
    require(isRead || accessor->associations().empty(), "a read that failed leaves associations");
}

void rewriteScene(const char* ending, const std::uint8_t* data, std::size_t size)
{
    const std::string before = textOf(data, size);
    const SceneFile& file = fileOf(ending, before);
    const std::set<std::string> some = {"Body", "a"};
    rewriteInPart(file, before, &some);
    rewriteInPart(file, before, nullptr);
    file.setBytes(before);
    std::string errors;
    const std::unique_ptr<Data::Accessor> first = Data::Accessor::readFile(file.name(), errors);
    if (!first)
        return;
    if (!first->write(errors))
    {
        require(file.bytes() == before, "a write that failed changed the file: " + errors);
        return;
    }
    const std::unique_ptr<Data::Accessor> second = Data::Accessor::readFile(file.name(), errors);
    require(second != nullptr, "a file that was written cannot be read: " + errors);
    require(metadataOf(*second) == metadataOf(*first), "the metadata changed when it was written");
    // Channels without streams go with the first writing, the associations that held them with the second.
    require(second->write(errors), "a file cannot be written twice: " + errors);
    const std::string written = file.bytes();
    const std::unique_ptr<Data::Accessor> third = Data::Accessor::readFile(file.name(), errors);
    require(third && third->write(errors), "a file cannot be written three times: " + errors);
    require(file.bytes() == written, "writing what is there changes the file");
}
} // namespace vumo::fuzz
