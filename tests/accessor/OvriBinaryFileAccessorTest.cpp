#include "vumo/accessor/OvriBinaryFileAccessor.h"

#include "tests/accessor/AccessorFixture.h"

#include <fstream>

namespace vumo::test
{
namespace
{
// Positions in the golden scene.
constexpr std::size_t kMainSize = 8;
constexpr std::size_t kTypeStart = 16;
constexpr std::size_t kHeadEnd = 20;
constexpr std::size_t kTrailerGroup = 68;
constexpr std::size_t kTrailerSize = 76;
constexpr std::size_t kTrailerStart = 88;

class OvriBinaryFileAccessorTest : public AccessorFixture
{
protected:
    /// Rewrites the file with what the accessor holds; the scene before the trailer must not change.
    void writeScene(const Accessor& accessor) const
    {
        const std::string before = mFile.bytes();
        std::string errors;
        ASSERT_TRUE(accessor.write(errors)) << errors;
        ASSERT_EQ(errors, "");
        const std::string after = mFile.bytes();
        EXPECT_EQ(after.substr(0, kMainSize), before.substr(0, kMainSize));
        EXPECT_EQ(after.substr(kTypeStart, mSceneEnd - kTypeStart), before.substr(kTypeStart, mSceneEnd - kTypeStart));
    }

    ScratchFile mFile{".ob"};
    std::size_t mSceneEnd = kTrailerSize; // up to the size of the trailer group
};

using OvriBinaryFileAccessorGoldenTest = OvriBinaryFileAccessorTest;

TEST_F(OvriBinaryFileAccessorGoldenTest, Read_GivesWhatTheBytesSay)
{
    mFile.setBytes(goldenBytes("binary_scene.hex"));
    const auto accessor = readScene(mFile.name());
    ASSERT_EQ(accessor->structures().size(), 1U);
    EXPECT_EQ(**accessor->structures().begin(), *valueStructure("Weight"));
    EXPECT_EQ(accessor->associations().size(), 2U);
    EXPECT_EQ(valueAt(*accessor, "", "scene", "notes", IndexString("ann")), "0.5");
    EXPECT_EQ(valueAt(*accessor, "Body", "vertex", "weights", 2), "0.25");
    writeScene(*accessor);
    EXPECT_EQ(mFile.bytes(), goldenBytes("binary_scene.hex"));
}

TEST_F(OvriBinaryFileAccessorGoldenTest, Write_GivesTheBytesForWhatACallerMade)
{
    mFile.setBytes(goldenBytes("binary_scene.hex"));
    const auto accessor = readScene(mFile.name());
    accessor->clear();
    const Ref<Structure> weight = valueStructure("Weight");
    accessor->setStructures({weight.get()});
    accessor->associations()["Body"] = associationsOf("vertex", "weights", *weight, 2, "0.25");
    accessor->associations()[""] = associationsOf("scene", "notes", *weight, IndexString("ann"), "0.5");
    accessor->associations()["Head"]; // empty: nothing is written
    writeScene(*accessor);
    EXPECT_EQ(mFile.bytes(), goldenBytes("binary_scene.hex"));
}

TEST_F(OvriBinaryFileAccessorTest, Write_LargerAndSmallerEditsKeepTheFileWhole)
{
    mFile.setBytes(goldenBytes("binary_scene.hex"));
    for (const std::size_t count : {0U, 50U, 1U, 2U, 0U, 7U})
    {
        SCOPED_TRACE(count);
        const auto accessor = readScene(mFile.name());
        Channel channel = accessor->associations()["Body"].channel("vertex");
        const Ref<Structure> weight(new Structure(**accessor->structures().begin()));
        Stream stream(*weight, "weights");
        for (unsigned int i = 0; i < count; ++i)
            setValue(stream, i, std::to_string(i));
        accessor->setStructures({weight.get()});
        channel.setDataStream(stream);
        writeScene(*accessor);

        const auto edited = readScene(mFile.name());
        EXPECT_EQ(edited->associations()["Body"].channel("vertex").findDataStream("weights")->elementCount(), count);
        EXPECT_EQ(valueAt(*edited, "", "scene", "notes", IndexString("ann")), "0.5");
        const std::string bytes = mFile.bytes();
        EXPECT_EQ(bytes.substr(kMainSize, 8), bigEndian(bytes.size() - 16, 8));
        EXPECT_NE(bytes.find("front\xEE\xEE\xEE"), std::string::npos);
        EXPECT_NE(bytes.find("fur 2.1"), std::string::npos);
    }
    const auto accessor = readScene(mFile.name());
    accessor->clear();
    writeScene(*accessor);
    EXPECT_EQ(mFile.bytes().size(), kTrailerStart + 24 + 24 + 24) << "the two chunks of the host, and the end";
}

/// Writes metadata for every node of the scene in the file.
void attachWeights(const ScratchFile& file, const std::vector<std::string>& nodes)
{
    const auto accessor = readScene(file.name());
    const Ref<Structure> weight = valueStructure("Weight");
    accessor->setStructures({weight.get()});
    for (const std::string& node : nodes)
        accessor->associations()[node] = associationsOf("vertex", "weights", *weight, 3, "0.125");
    std::string errors;
    ASSERT_TRUE(accessor->write(errors)) << errors;
}

example::Scene sceneOf(unsigned int nodeCount)
{
    example::Scene scene;
    for (unsigned int i = 0; i < nodeCount; ++i)
        scene.mNodes.push_back("node" + std::to_string(i));
    scene.mTrailer = example::cameraChunk() + example::pluginChunk();
    return scene;
}

TEST_F(OvriBinaryFileAccessorTest, Write_OfAThousandNodesChangesNothingButWhatWasEdited)
{
    const example::Scene scene = sceneOf(1000);
    std::ostringstream bare;
    ASSERT_TRUE(example::writeScene(scene, bare));
    mFile.setBytes(bare.str());
    mSceneEnd = bare.str().size() - 24 - scene.mTrailer.size() - 12;
    attachWeights(mFile, scene.mNodes);
    const std::string attached = mFile.bytes();

    const auto accessor = readScene(mFile.name());
    EXPECT_EQ(accessor->associations().size(), 1000U);
    writeScene(*accessor);
    EXPECT_EQ(mFile.bytes(), attached);

    Stream* stream = accessor->associations()["node500"].channel("vertex").findDataStream("weights");
    setValue(*stream, 4, "17");
    writeScene(*accessor);
    EXPECT_GT(mFile.bytes().size(), attached.size());
    EXPECT_EQ(valueAt(*readScene(mFile.name()), "node500", "vertex", "weights", 4), "17");

    stream->removeElement(4);
    writeScene(*accessor);
    EXPECT_EQ(mFile.bytes(), attached);
}

TEST_F(OvriBinaryFileAccessorTest, ASceneOfFourGigabytes_IsNeitherReadNorWritten)
{
    example::Scene scene = sceneOf(10);
    scene.mHoleSize = 4ULL << 30;
    {
        std::ofstream out(mFile.name(), std::ios::binary);
        ASSERT_TRUE(example::writeScene(scene, out));
    }
    const std::uint64_t atStart = bytesReadByProcess();
    attachWeights(mFile, scene.mNodes);
    const auto accessor = readScene(mFile.name());
    const std::uint64_t total = bytesReadByProcess() - atStart;
    RecordProperty("bytesRead", std::to_string(total));
    EXPECT_LT(total, 100000U) << "for two reads and one write";
    EXPECT_EQ(valueAt(*accessor, "node9", "vertex", "weights", 3), "0.125");
}

/// Reads the damaged scene, and rewrites it with metadata read before the damage.
class DamageTest : public OvriBinaryFileAccessorTest
{
protected:
    DamageTest() : mGood(goldenBytes("binary_scene.hex"))
    {
        mFile.setBytes(mGood);
        mHolder = readScene(mFile.name());
        mHolder->setDurability(Accessor::kMemoryOnly); // thousands of writes need not wait for the disk
    }

    void expectRefusedOrRead(const std::string& damaged)
    {
        mFile.setBytes(damaged);
        OvriBinaryFileAccessor accessor;
        std::string errors;
        const bool isRead = accessor.read(mFile.name(), errors);
        EXPECT_EQ(isRead, errors.empty()) << errors;
        EXPECT_TRUE(isRead || (accessor.structures().empty() && accessor.associations().empty()));
        EXPECT_TRUE(Structure::allStructures().empty());
    }

    /// What a read leaves in the file is there after a write, byte by byte.
    void expectRefusedOrKept(const std::string& damaged)
    {
        mFile.setBytes(damaged);
        OvriBinaryFileAccessor accessor;
        accessor.setUnread(Accessor::kKeep);
        accessor.setDurability(Accessor::kMemoryOnly);
        std::string errors;
        const bool isRead = accessor.read(mFile.name(), errors);
        EXPECT_EQ(isRead, errors.empty()) << errors;
        if (!isRead)
            return;
        const std::vector<UnreadBlock> before = accessor.unread();
        const bool isWritten = accessor.write(errors);
        EXPECT_EQ(isWritten, errors.empty()) << errors;
        const std::string bytes = mFile.bytes();
        EXPECT_TRUE(isWritten || bytes == damaged);
        const std::vector<UnreadBlock> after = accessor.unread();
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t i = 0; i < after.size(); ++i)
            EXPECT_EQ(bytes.substr(after[i].position, after[i].length),
                      damaged.substr(before[i].position, before[i].length));
    }

    void expectRefusedOrWritten(const std::string& damaged)
    {
        mFile.setBytes(damaged);
        std::string errors;
        const bool isWritten = mHolder->write(errors);
        EXPECT_EQ(isWritten, errors.empty()) << errors;
        const std::string bytes = mFile.bytes();
        if (!isWritten)
        {
            EXPECT_EQ(bytes, damaged);
            return;
        }
        EXPECT_TRUE(mHolder->isFileSupported(mFile.name()));
        EXPECT_EQ(bytes.substr(kTypeStart, kTrailerSize - kTypeStart),
                  damaged.substr(kTypeStart, kTrailerSize - kTypeStart));
        for (const char* host : {"front", "fur 2.1"})
            EXPECT_EQ(bytes.find(host) == std::string::npos, damaged.find(host) == std::string::npos) << host;
    }

    void damage(const std::string& damaged)
    {
        expectRefusedOrRead(damaged);
        expectRefusedOrKept(damaged);
        expectRefusedOrWritten(damaged);
    }

    const std::string mGood;
    std::unique_ptr<Accessor> mHolder;
};

using OvriBinaryFileAccessorDamageTest = DamageTest;

TEST_F(OvriBinaryFileAccessorDamageTest, AFileCutAnywhere_IsRefusedUnlessOnlyPaddingIsMissing)
{
    for (std::size_t length = 0; length < mGood.size() && !HasFailure(); ++length)
    {
        SCOPED_TRACE(length);
        damage(mGood.substr(0, length));
        const bool isWhole = length >= mGood.size() - 4;
        EXPECT_EQ(mFile.bytes() == mGood, isWhole) << "writing mends the padding";
    }
}

TEST_F(OvriBinaryFileAccessorDamageTest, EveryByteOfHeadAndTrailer_MayLie)
{
    int cases = 0;
    for (std::size_t i = 0; i < mGood.size() && !HasFailure(); ++i)
    {
        if (i >= kHeadEnd && i < kTrailerGroup)
            continue;
        for (const int pattern : {0x01, 0x08, 0x10, 0x20, 0x80, 0xFF})
        {
            SCOPED_TRACE("byte " + std::to_string(i) + ", pattern " + std::to_string(pattern));
            std::string damaged = mGood;
            damaged[i] = static_cast<char>(damaged[i] ^ pattern);
            damage(damaged);
            ++cases;
        }
    }
    RecordProperty("cases", cases);
}
} // namespace
} // namespace vumo::test
