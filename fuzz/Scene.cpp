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
#include <vector>

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

/// Nodes of the samples, for reads in part.
const std::set<std::string> kSomeNodes = {"Body", "a"};

using Metadata = std::pair<std::set<std::string>, std::map<std::string, std::string>>;

/// The names of the structures, and the text of the associations of each node where it says anything: associations
/// without channels are not written, nor are channels without streams.
Metadata metadataOf(const Data::Accessor& accessor, Data::eNumbers numbers)
{
    std::string nothing;
    textOf(Data::Associations(), nothing);
    Metadata metadata;
    for (const Data::Structure* const structure : accessor.structures())
        metadata.first.insert(structure->name());
    for (const auto& [node, associations] : accessor.associations())
    {
        std::string text;
        textOf(associations, text, numbers);
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

Contents contentsOf(const SceneFile& file, Data::eNumbers numbers)
{
    const std::unique_ptr<Data::Accessor> accessor = keepingReader(file, nullptr);
    require(accessor != nullptr, "a file that was written is damaged");
    const std::string bytes = file.bytes();
    std::set<std::string> unread;
    for (const Data::UnreadBlock& block : accessor->unread())
        unread.insert(bytes.substr(block.position, block.length));
    return {metadataOf(*accessor, numbers), unread};
}

/// Writes a file of which only some nodes were read: nothing of the others changes, nor what cannot be read.
void rewriteInPart(const SceneFile& file, const std::string& before, const std::set<std::string>* nodes,
                   Data::eNumbers numbers)
{
    file.setBytes(before);
    const std::unique_ptr<Data::Accessor> accessor = keepingReader(file, nodes);
    if (!accessor)
        return;
    accessor->setNumbers(numbers);
    const Contents contents = contentsOf(file, numbers);
    std::string errors;
    if (!accessor->write(errors))
    {
        require(file.bytes() == before, "a write that failed changed the file: " + errors);
        return;
    }
    require(contentsOf(file, numbers) == contents, "what was kept changed when the file was written");
    const std::string written = file.bytes();
    require(accessor->write(errors) && file.bytes() == written, "writing again changes the file: " + errors);
}
/// Writes a file of which everything was read.
void rewriteAll(const SceneFile& file, const std::string& before, Data::eNumbers numbers)
{
    file.setBytes(before);
    std::string errors;
    const auto read = [&] {
        std::unique_ptr<Data::Accessor> accessor = Data::Accessor::readFile(file.name(), errors);
        if (accessor)
            accessor->setNumbers(numbers);
        return accessor;
    };
    const std::unique_ptr<Data::Accessor> first = read();
    if (!first)
        return;
    if (!first->write(errors))
    {
        require(file.bytes() == before, "a write that failed changed the file: " + errors);
        return;
    }
    const std::unique_ptr<Data::Accessor> second = read();
    require(second != nullptr, "a file that was written cannot be read: " + errors);
    require(metadataOf(*second, numbers) == metadataOf(*first, numbers), "the metadata changed when it was written");
    // Channels without streams go with the first writing, the associations that held them with the second.
    require(second->write(errors), "a file cannot be written twice: " + errors);
    const std::string written = file.bytes();
    const std::unique_ptr<Data::Accessor> third = read();
    require(third && third->write(errors), "a file cannot be written three times: " + errors);
    require(file.bytes() == written, "writing what is there changes the file");
}

/// Reads the file once more, so that it keeps what is not read, and once more in two parts: `all` is what a plain read
/// gave, or null.
void readInParts(const SceneFile& file, const Data::Accessor* all)
{
    const std::unique_ptr<Data::Accessor> kept = keepingReader(file, nullptr);
    require(kept || !all, "a file can be read, but not so that the rest is kept");
    const std::unique_ptr<Data::Accessor> part = keepingReader(file, &kSomeNodes);
    require(static_cast<bool>(kept) == static_cast<bool>(part), "damage depends on what is wanted of a file");
    std::string errors;
    std::vector<Data::ListedBlock> blocks;
    const bool isListed = Data::Accessor::list(file.name(), blocks, errors);
    require(isListed || !kept, "a file can be read, but not listed: " + errors);
    if (!kept)
        return;
    const Metadata metadata = metadataOf(*kept, Data::kExact);
    require(!all || (kept->unread().empty() && metadata == metadataOf(*all, Data::kExact)),
            "less is read when the rest is kept");
    std::set<std::string> names;
    for (const auto& [node, associations] : kept->associations())
        names.insert(node);
    require(part->readMore(names, errors) && metadataOf(*part, Data::kExact) == metadata,
            "what is read in two parts is not the whole: " + errors);
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
    readInParts(file, isRead ? accessor.get() : nullptr);
}

void rewriteScene(const char* ending, const std::uint8_t* data, std::size_t size)
{
    const std::string before = textOf(data, size);
    const SceneFile& file = fileOf(ending, before);
    for (const Data::eNumbers numbers : {Data::kSixDigits, Data::kExact})
    {
        rewriteInPart(file, before, &kSomeNodes, numbers);
        rewriteInPart(file, before, nullptr, numbers);
        rewriteAll(file, before, numbers);
    }
}
} // namespace vumo::fuzz
