#include "tests/accessor/AccessorFixture.h"
#include "tests/accessor/FileCallScript.h"
#include "tests/support/Allocations.h"

#include <filesystem>

namespace vumo::test
{
namespace
{
using Script = FileCallScript;
using HostileFileTest = AccessorFixture;

TEST_F(HostileFileTest, AFileThatChangesWhileItIsRead_IsReadOrRefused)
{
    for (const auto& [ending, bytes, edited] : kRichScenes)
    {
        const ScratchFile file(ending);
        const std::string zeros(bytes.size(), '\0');
        const std::string half = bytes.substr(0, bytes.size() / 2);
        const std::string shifted = bytes.substr(0, bytes.size() / 3) + bytes;
        for (const std::string& other : {std::string(), zeros, half, shifted, bytes + zeros})
        {
            Script script;
            for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
            {
                SCOPED_TRACE(ending + std::to_string(other.size()) + " before read " + std::to_string(turn));
                file.setBytes(bytes);
                script = Script();
                script.mCalls = Script::kReads;
                script.mTurn = turn;
                script.mMeanwhile = [&file, &other] { file.setBytes(other); };
                const auto accessor = Accessor::accessorByExtension(file.name());
                std::string errors;
                const Script::Use use(script);
                const bool isRead = accessor->read(file.name(), errors);
                EXPECT_EQ(isRead, errors.empty()) << errors;
                EXPECT_TRUE(isRead || (accessor->structures().empty() && accessor->associations().empty()));
                EXPECT_TRUE(Structure::allStructures().empty());
            }
        }
    }
}

TEST_F(HostileFileTest, AnAsciiFileWithoutLines_IsSearchedInBlocksOfAModestSize)
{
    constexpr std::uint64_t kFileSize = 192 << 20; // of zeros that take no space
    constexpr std::size_t kLargestBlock = 4 << 20;
    const ScratchFile file(".oa");
    file.setBytes("//Ovri ASCII 2014 scene\n");
    std::filesystem::resize_file(file.name(), kFileSize);
    const auto accessor = readScene(file.name());
    std::string errors;
    resetLargestAllocation();
    EXPECT_FALSE(accessor->write(errors));
    EXPECT_LT(largestAllocation(), kLargestBlock + 4096);
    EXPECT_EQ(errors, "Could not find trailer prefix.");
}
} // namespace
} // namespace vumo::test
