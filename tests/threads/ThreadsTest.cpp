// What several threads may do at once. Under the thread sanitizer this is what looks for races.

#include "tests/support/Threads.h"

#include "tests/accessor/AccessorFixture.h"

#include <algorithm>
#include <array>
#include <deque>

namespace vumo::test
{
namespace
{
constexpr int kThreads = 8;

/// Gives each test structures that all threads share: one of numbers, one with a text.
class ThreadsTest : public AccessorFixture
{
protected:
    /// A stream of `count` elements in which element i has the number i and the label "n", with the last digit of i.
    Stream numbered(unsigned int count, bool isDense) const
    {
        Stream stream(*mShared, "numbered");
        stream.useDenseStorage(isDense);
        for (unsigned int i = 0; i < count; ++i)
        {
            Handle element(*mShared);
            setText(element, "label", "n" + std::to_string(i % 10));
            setText(element, "number", std::to_string(i)); // and stays there, in mapped storage
            stream.setElement(i, element);
        }
        return stream;
    }

    const Ref<Structure> mShared =
        Structure::make("Shared", {{Member::kUInt32, 1, "number"}, {Member::kString, 1, "label"}});
};

TEST_F(ThreadsTest, ScenesOfTheirOwn_AreReadEditedAndSaved)
{
    constexpr int kRounds = 3;
    std::deque<ScratchFile> files;
    for (int i = 0; i < kThreads; ++i)
        files.emplace_back(kRichScenes[i % 2].ending);
    Structure::registerStructure(*mShared);
    const Ref<Structure> misleading = Structure::make("Weight", {{Member::kString, 1, "not what files have"}});
    Structure::registerStructure(*misleading);
    inThreads(kThreads, [&](int i) {
        const RichScene& scene = kRichScenes[i % 2];
        const ScratchFile& file = files[static_cast<std::size_t>(i)];
        for (int round = 0; round < kRounds; ++round)
        {
            file.setBytes(scene.bytes);
            const auto accessor = readScene(file.name());
            EXPECT_EQ(Structure::structureByName("Weight"), misleading.get()) << "that of a file, or none";
            ASSERT_TRUE(accessor);
            EXPECT_EQ(accessor->structures().size(), 3U);
            EXPECT_EQ(valueAt(*accessor, "body", "edge", "creases", IndexPair(0, 2)), "0.75");
            edit(*accessor);
            std::string errors;
            EXPECT_TRUE(accessor->write(errors)) << errors;
            EXPECT_EQ(file.bytes(), scene.edited);
            EXPECT_EQ(valueAt(*readScene(file.name()), "body", "edge", "creases", IndexPair(0, 2)), "0.125");
        }
    });
    EXPECT_EQ(Structure::allStructures(), (std::set<Structure*>{mShared.get(), misleading.get()}));
    Structure::deleteAllStructures();
}

/// Waits in the middle of a read until another thread has looked at the registry.
class WaitingAccessor : public Accessor
{
public:
    std::atomic<bool> isReading = false;
    std::atomic<bool> mayEnd = false;

protected:
    bool performRead(const std::set<std::string>* /*structureNames*/, const std::set<std::string>* /*associationNames*/,
                     std::string& /*errors*/) override
    {
        EXPECT_TRUE(Structure::allStructures().empty());
        Structure::registerStructure(*new Structure("of the file"));
        isReading = true;
        while (!mayEnd)
            std::this_thread::yield();
        EXPECT_EQ(Structure::allStructures().size(), 1U);
        EXPECT_EQ(Structure::structureByName("Shared"), nullptr);
        return true;
    }
};

TEST_F(ThreadsTest, ARead_HidesTheRegistryFromItsOwnThreadOnly)
{
    Structure::registerStructure(*mShared);
    std::array<WaitingAccessor, 2> accessors;
    const auto areReading = [&] {
        return std::all_of(accessors.begin(), accessors.end(), [](const auto& each) { return each.isReading.load(); });
    };
    inThreads(3, [&](int i) {
        std::string errors;
        if (i < 2)
        {
            EXPECT_TRUE(accessors[static_cast<std::size_t>(i)].read("file", errors)) << errors;
            EXPECT_EQ(Structure::allStructures().count(mShared.get()), 1U);
            return;
        }
        while (!areReading())
            std::this_thread::yield();
        EXPECT_EQ(Structure::structureByName("Shared"), mShared.get());
        EXPECT_EQ(Structure::structureByName("of the file"), nullptr);
        for (WaitingAccessor& accessor : accessors)
            accessor.mayEnd = true;
    });
    EXPECT_EQ(accessors[0].structures().size(), 1U);
    Structure::deregisterStructure(*mShared);
}

TEST_F(ThreadsTest, StreamsOfTheirOwn_ShareAStructure)
{
    constexpr unsigned int kElements = 500;
    const int references = mShared->refCount();
    std::atomic<unsigned int> sum = 0;
    inThreads(kThreads, [&](int i) {
        const char* const defaults = mShared->defaultData(); // made by the first who asks, as is the format
        const StructureSerializer* const format = StructureSerializerDebug::theFormat();
        Associations associations;
        Channel channel = associations.channel("vertex");
        channel.setDataStream(numbered(kElements, i % 2 == 0));
        EXPECT_TRUE(channel.renameDataStream("numbered", "own"));
        EXPECT_TRUE(associations.renameChannel("vertex", "face"));
        const Stream* const stream = associations.findChannel("face")->findDataStream("own");
        ASSERT_TRUE(stream);
        for (auto [index, element] : stream->elements())
            sum += element.get<std::uint32_t>().value_or(0);
        Stream texts(*mShared, "texts");
        texts.setIndexType("string");
        for (unsigned int n = 0; n < kElements; ++n)
            texts.setElement(IndexString(std::to_string(n)), stream->element(n));
        for (unsigned int n = 0; n < kElements; n += 2)
            texts.removeElement(IndexString(std::to_string(n)));
        EXPECT_EQ(texts.elementCount(), kElements / 2);
        EXPECT_TRUE(Structure(*mShared) == *mShared);
        EXPECT_EQ(defaults, mShared->defaultData());
        EXPECT_EQ(format, StructureSerializerDebug::theFormat());
    });
    EXPECT_EQ(sum, kThreads * (kElements - 1) * kElements / 2);
    EXPECT_EQ(mShared->refCount(), references);
}

TEST_F(ThreadsTest, OneStream_IsReadInEveryWay)
{
    constexpr unsigned int kElements = 300;
    for (const bool isDense : {false, true})
    {
        Associations shared;
        shared.channel("vertex").setDataStream(numbered(kElements, isDense));
        shared.channel("face");
        // Lookups are to find out at once, in all threads, that all is in order after this.
        EXPECT_TRUE(shared.findChannel("vertex")->renameDataStream("numbered", "shared"));
        EXPECT_TRUE(shared.renameChannel("face", "edge"));
        std::ostringstream expected;
        std::string errors;
        StreamSerializerRaw::theFormat()->write(*shared.findChannel("vertex")->findDataStream("shared"), expected,
                                                errors);
        const Associations& constShared = shared;
        inThreads(kThreads, [&](int i) {
            const Associations copy = shared;
            ASSERT_TRUE(constShared.findChannel("vertex"));
            const Stream* const found = constShared.findChannel("vertex")->findDataStream("shared");
            ASSERT_TRUE(found);
            const Stream stream = *found;
            unsigned int sum = 0;
            std::vector<unsigned int> numbers;
            for (unsigned int n = 0; n < kElements; ++n)
            {
                EXPECT_EQ(textOf(stream.element(n), "label"), "n" + std::to_string(n % 10));
                sum += stream.element(n).get<std::uint32_t>().value_or(0);
                numbers.push_back((n + static_cast<unsigned int>(i)) % kElements);
            }
            for (const auto value : stream.memberView<const std::uint32_t>("number"))
                sum += value[0];
            std::vector<std::uint32_t> values(kElements);
            EXPECT_EQ(stream.getMemberValues("number", numbers.data(), kElements, values.data()), kElements);
            EXPECT_EQ(values, numbers);
            for (const auto& element : stream)
                sum += element.get<std::uint32_t>().value_or(0);
            EXPECT_EQ(sum, (isDense ? 3 : 2) * (kElements - 1) * kElements / 2);
            std::ostringstream text;
            std::string threadErrors;
            EXPECT_EQ(StreamSerializerRaw::theFormat()->write(stream, text, threadErrors), 0) << threadErrors;
            EXPECT_EQ(text.str(), expected.str());
        });
    }
}

TEST_F(ThreadsTest, DisjointElements_AreWrittenThroughViews)
{
    constexpr unsigned int kElements = 800;
    const Stream stream = numbered(kElements, true);
    inThreads(kThreads, [&](int i) {
        const auto view = stream.memberView<std::uint32_t>("number");
        for (unsigned int n = static_cast<unsigned int>(i); n < kElements; n += kThreads)
            view[n].set(0, 2 * view[n][0]);
    });
    for (unsigned int n = 0; n < kElements; ++n)
        EXPECT_EQ(stream.element(n).get<std::uint32_t>(), 2 * n);
}

TEST_F(ThreadsTest, OneScene_KeepsWhatAllSaversAdd)
{
    for (const RichScene& scene : kRichScenes)
    {
        const ScratchFile file(scene.ending);
        file.setBytes(scene.bytes);
        const std::set<std::string> present = {"", "body", "head"};
        inThreads(kThreads, [&](int i) {
            const std::string node = "node" + std::to_string(i);
            for (bool isSaved = false; !isSaved;)
            {
                const auto accessor = Accessor::accessorByExtension(file.name());
                accessor->setLockWait(60000);
                std::string errors;
                ASSERT_TRUE(accessor->read(file.name(), errors)) << errors; // never one half old and half new
                EXPECT_EQ(valueAt(*accessor, "body", "edge", "creases", IndexPair(0, 2)), "0.75");
                accessor->associations()[node] = accessor->associations()["head"];
                isSaved = accessor->write(errors);
                EXPECT_TRUE(isSaved || accessor->failure().kind == Accessor::Failure::kChanged) << errors;
            }
        });
        EXPECT_EQ(readScene(file.name())->associations().size(), present.size() + kThreads);
    }
}
} // namespace
} // namespace vumo::test
