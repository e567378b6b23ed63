#include "benchmarks/ToolBench.h"

#include "benchmarks/SceneFileBench.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace bench
{
namespace
{
constexpr std::size_t kScenes = 10'000;
constexpr std::size_t kNodesOfScene = 20;
constexpr std::size_t kElementsOfScene = 50;
constexpr std::size_t kNodes = 20'000;
constexpr std::size_t kElements = 10;

/// Very many names of one scene, in a folder that is removed with the object.
class Production
{
public:
    Production(const SceneFile& scene, std::size_t files) : mFolder("production")
    {
        std::filesystem::create_directory(mFolder.name());
        for (std::size_t i = 0; i < files; ++i)
            std::filesystem::create_hard_link(scene.name(), mFolder.name() + "/" + std::to_string(i) + ".ob");
    }
    Production(const Production&) = delete;
    Production& operator=(const Production&) = delete;
    ~Production()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mFolder.name(), ignored);
    }

    const std::string& folder() const { return mFolder.name(); }

private:
    const ScratchFile mFolder;
};

/// Runs the tool and counts the lines that it prints.
std::uint64_t linesOf(const std::string& arguments)
{
    FILE* const pipe = popen((VUMO_TOOL_PATH " " + arguments).c_str(), "r");
    if (!pipe)
        throw WrongResult("the tool does not start");
    std::uint64_t lines = 0;
    std::array<char, 65536> part{};
    while (const std::size_t length = std::fread(part.data(), 1, part.size(), pipe))
    {
        const char* const end = part.data() + length;
        for (const char* at = part.data();
             (at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)))); ++at)
            ++lines; // at a cost that is not seen beside the tool's
    }
    if (pclose(pipe) != 0)
        throw WrongResult("the tool fails");
    return lines;
}

/// `kept` is what the arguments name.
template <class Kept>
Side toolRunning(const std::string& arguments, std::uint64_t lines, const Kept& kept)
{
    const auto round = [arguments, kept](Stopwatch& watch) {
        std::uint64_t result = 0;
        watch.time([&] { result = linesOf(arguments); });
        return result;
    };
    return {round, lines};
}

/// `arguments` follow the command and the file.
void compareWithReading(Comparison& comparison, const std::string& command, const std::string& arguments,
                        std::size_t nodes, std::uint64_t lines)
{
    const std::vector<Record> records = makeRecords(kElements);
    const auto file = sceneOfNodes("ob", nodes, records);
    comparison.run(nodes, toolRunning(command + " " + file->name() + arguments, lines, file),
                   nodesReading(file, nodes, records));
}
} // namespace

void compareScan(Comparison& comparison)
{
    constexpr std::uint64_t kLinesOfScene = 2 + 2 * kNodesOfScene; // file, structure, nodes and their streams
    const std::size_t scenes = comparison.scaled(kScenes);
    const std::vector<Record> records = makeRecords(kElementsOfScene);
    const auto scene = sceneOfNodes("ob", kNodesOfScene, records);
    const auto production = std::make_shared<const Production>(*scene, scenes);
    comparison.run(scenes * kNodesOfScene * kElementsOfScene,
                   toolRunning("scan " + production->folder(), scenes * kLinesOfScene, production),
                   repeated(partsReading(scene, kNodesOfScene, records, true), static_cast<unsigned int>(scenes)));
}

void compareListing(Comparison& comparison)
{
    const std::size_t nodes = comparison.scaled(kNodes);
    compareWithReading(comparison, "ls", "", nodes, nodes);
}

void compareGet(Comparison& comparison)
{
    const std::size_t nodes = comparison.scaled(kNodes);
    compareWithReading(comparison, "get", " node" + std::to_string(nodes / 2) + " vertex points 5 Label", nodes, 1);
}
} // namespace bench
