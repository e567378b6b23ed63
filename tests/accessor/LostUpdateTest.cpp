#include "tests/accessor/AccessorFixture.h"
#include "tests/accessor/FileCallScript.h"

#include <fcntl.h>
#include <sys/file.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

namespace vumo::test
{
namespace
{
/// A scene of each kind without metadata, and as the host saves it after some work on it: with the same end.
struct Kind
{
    const char* ending;
    std::function<std::string(const std::string& tail, unsigned int edition)> scene;
    std::string tail; ///< of a scene without metadata
    std::string cut;  ///< what a write says of a scene that has lost its end
};

std::string asciiScene(const std::string& tail, unsigned int edition)
{
    return "//Ovri ASCII 2014 scene\n" + std::string(edition, '\n') + "select -ne :a;\n" + tail;
}

std::string binaryScene(const std::string& tail, unsigned int edition)
{
    example::Scene scene;
    scene.mNodes = {"Body"};
    scene.mVerticesPerNode = 10 + edition;
    scene.mTrailer = tail;
    std::ostringstream out;
    EXPECT_TRUE(example::writeScene(scene, out));
    return out.str();
}

const Kind kKinds[] = {
    {".oa", asciiScene, "// a line of the host's\n// End of it\n", "Failed reading line while searching metadata end."},
    {".ob", binaryScene, example::cameraChunk(), "Error reading the trailer-size chunk header."},
};

/// Another program's metadata of the node "Other" come and go beside those of "Body".
class LostUpdateTest : public AccessorFixture
{
protected:
    Associations weight(const std::string& value) const
    {
        return associationsOf("vertex", "weights", *mWeight, 0, value);
    }

    /// Makes the scene with metadata of two nodes, and an accessor that has read it and changed one.
    void prepare(const Kind& kind)
    {
        mFile = std::make_unique<ScratchFile>(kind.ending);
        mFile->setBytes(kind.scene(kind.tail, 0));
        ASSERT_EQ(attach(mFile->name(), "Body", weight("1")), "");
        ASSERT_EQ(attach(mFile->name(), "Other", weight("2")), "");
        mAccessor = readScene(mFile->name());
        mAccessor->associations()["Body"] = weight("3");
    }

    /// The end of the file, from its metadata or the lines of the host's before them on.
    std::string tail(const Kind& kind) const
    {
        const std::string bytes = mFile->bytes();
        const std::size_t begin = kind.scene("", 0).find(kind.ending == std::string(".oa") ? "select" : "BCSZ");
        return kind.ending == std::string(".oa") ? bytes.substr(begin + 15)
                                                 : bytes.substr(begin, bytes.size() - 24 - begin);
    }

    /// Says why the accessor does not write; then the file is as it was. Sees that it knows what it has written.
    std::string write() const
    {
        const std::string before = mFile->bytes();
        const std::uint64_t known = mAccessor->checksum();
        std::string errors;
        const bool isWritten = mAccessor->write(errors);
        EXPECT_EQ(isWritten, errors.empty()) << errors;
        EXPECT_TRUE(isWritten || (mFile->bytes() == before && mAccessor->checksum() == known));
        EXPECT_TRUE(!isWritten || mAccessor->checksum() == readScene(mFile->name())->checksum());
        return errors;
    }

    std::string changed() const
    {
        return "The metadata of " + mFile->name() + " has been changed by somebody else since it was read.\n";
    }

    void replaceByRenaming(const std::string& bytes) const
    {
        const ScratchFile other(".new");
        other.setBytes(bytes);
        std::filesystem::rename(other.name(), mFile->name());
    }

    const Ref<Structure> mWeight = valueStructure("Weight");
    std::unique_ptr<ScratchFile> mFile;
    std::unique_ptr<Accessor> mAccessor;
};

TEST_F(LostUpdateTest, MetadataThatSomebodyElseHasChanged_IsNotReplaced)
{
    for (const Kind& kind : kKinds)
    {
        const struct
        {
            const char* what;
            std::function<void()> meanwhile;
            bool isConflict;
        } cases[] = {
            {"nothing", [] {}, false},
            {"own write", [&] { EXPECT_EQ(write(), ""); }, false},
            {"another node", [&] { attach(mFile->name(), "Other", weight("4")); }, true},
            {"a new node", [&] { attach(mFile->name(), "Third", weight("4")); }, true},
            {"no node", [&] { attach(mFile->name(), "Other", Associations()); }, true},
            {"the same metadata", [&] { attach(mFile->name(), "Other", weight("2")); }, false},
            {"there and back",
             [&] {
                 attach(mFile->name(), "Other", weight("4"));
                 attach(mFile->name(), "Other", weight("2"));
             },
             false},
            {"no metadata", [&] { mFile->setBytes(kind.scene(kind.tail, 0)); }, true},
            {"the host's save", [&] { mFile->setBytes(kind.scene(tail(kind), 3)); }, false},
            {"a copy of it", [&] { replaceByRenaming(kind.scene(tail(kind), 3)); }, false},
            {"a changed copy",
             [&] {
                 attach(mFile->name(), "Other", weight("4"));
                 replaceByRenaming(mFile->bytes());
             },
             true},
            {"a read with filters",
             [&] {
                 const std::set<std::string> names = {"Body"};
                 std::string errors;
                 const std::uint64_t all = mAccessor->checksum();
                 mAccessor->clear();
                 EXPECT_EQ(mAccessor->checksum(), all);
                 EXPECT_TRUE(mAccessor->read(mFile->name(), nullptr, &names, errors));
                 EXPECT_EQ(mAccessor->checksum(), all);
             },
             false},
            {"a read that fails",
             [&] {
                 const std::string bytes = mFile->bytes();
                 mFile->setBytes("");
                 std::string errors;
                 mAccessor->clear();
                 EXPECT_FALSE(mAccessor->read(mFile->name(), errors));
                 EXPECT_EQ(mAccessor->checksum(), 0U);
                 mFile->setBytes(bytes);
             },
             true},
        };
        EXPECT_EQ(Accessor::accessorByExtension(kind.ending)->checksum(), 0U);
        for (const auto& row : cases)
        {
            SCOPED_TRACE(kind.ending + std::string(" ") + row.what);
            prepare(kind);
            EXPECT_NE(mAccessor->checksum(), 0U);
            row.meanwhile();
            EXPECT_EQ(write(), row.isConflict ? changed() : "");
            EXPECT_EQ(mAccessor->conflict(), Accessor::kRefuse);
            mAccessor->setConflict(Accessor::kOverwrite);
            mAccessor->associations()["Body"] = weight("5");
            EXPECT_EQ(write(), "");
            EXPECT_EQ(valueAt(*readScene(mFile->name()), "Body", "vertex", "weights", 0), "5");
        }
        prepare(kind);
        mFile->setBytes(mFile->bytes().substr(0, mFile->bytes().size() - 24));
        EXPECT_EQ(write(), kind.cut) << "what is wrong with the file comes first";
    }
}

TEST_F(LostUpdateTest, EachByteOfTheMetadata_Counts)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        prepare(kind);
        const std::string bytes = mFile->bytes();
        const bool isAscii = kind.ending == std::string(".oa");
        const std::size_t end = isAscii ? bytes.find("// End") : bytes.rfind("BCSZ");
        for (std::size_t i = bytes.find(isAscii ? "dataStructure" : "DATS"); i < end; ++i)
        {
            if (bytes[i] == '\0') // may be padding
                continue;
            std::string other = bytes;
            other[i] = other[i] == 'x' ? 'y' : 'x';
            mFile->setBytes(other);
            EXPECT_NE(write(), "") << i;
        }
        mFile->setBytes(bytes);
        EXPECT_EQ(write(), "");
    }
}

TEST_F(LostUpdateTest, ChunksAheadOfTheFirstStructure_AreTheHosts)
{
    prepare(kKinds[1]);
    const std::string early = chunk("MTDA", "Early" + kZero + "raw" + kZero + "endAssociations\n" + kZero);
    mFile->setBytes(binaryScene(early + tail(kKinds[1]), 0));
    EXPECT_EQ(write(), "");
    EXPECT_NE(mFile->bytes().find(early), std::string::npos);
}

TEST_F(LostUpdateTest, WhoWaitsForAnotherWriter_ComparesAfterwards)
{
    for (const Kind& kind : kKinds)
    {
        const struct
        {
            const char* what;
            unsigned int wait;
            bool isChanged;
            std::string message;
        } cases[] = {{"no wait", 0, false, " is being written by somebody else.\n"},
                     {"too short", 20, false, " is being written by somebody else.\n"},
                     {"unchanged", 60000, false, ""},
                     {"changed", 60000, true, "changed"}};
        for (const auto& row : cases)
        {
            SCOPED_TRACE(kind.ending + std::string(" ") + row.what);
            prepare(kind);
            const std::string before = mFile->bytes();
            ASSERT_EQ(attach(mFile->name(), "Other", weight("4")), "");
            const std::string after = mFile->bytes();
            mFile->setBytes(before);
            mAccessor->setLockWait(row.wait);
            const int other = open(mFile->name().c_str(), O_RDWR);
            ASSERT_EQ(flock(other, LOCK_EX), 0);
            std::thread ending;
            if (row.wait > 1000)
                ending = std::thread([&] {
                    std::this_thread::sleep_for(std::chrono::milliseconds(30));
                    const std::string& bytes = row.isChanged ? after : before;
                    EXPECT_EQ(pwrite(other, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
                    flock(other, LOCK_UN);
                });
            std::string errors;
            mAccessor->write(errors);
            if (ending.joinable())
                ending.join();
            close(other);
            EXPECT_EQ(errors, row.isChanged ? changed() : row.message.empty() ? "" : mFile->name() + row.message);
        }
    }
}

TEST_F(LostUpdateTest, ReadMore_WaitsForAnotherWriter)
{
    prepare(kKinds[0]);
    const std::set<std::string> names = {"Body"};
    std::string errors;
    mAccessor->clear();
    mAccessor->setUnread(Accessor::kKeep);
    mAccessor->setLockWait(60000);
    ASSERT_TRUE(mAccessor->read(mFile->name(), nullptr, &names, errors)) << errors;
    std::ofstream(mFile->recordName()).close(); // as a writer begins
    const int other = open(mFile->name().c_str(), O_RDWR);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    std::thread ending([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        std::filesystem::remove(mFile->recordName());
        close(other);
    });
    EXPECT_TRUE(mAccessor->readMore({"Other"}, errors)) << errors;
    ending.join();
    EXPECT_EQ(valueAt(*mAccessor, "Other", "vertex", "weights", 0), "2");
}

TEST_F(LostUpdateTest, AThreadThatSaves_LocksTheOthersOut)
{
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.ending);
        prepare(kind);
        const auto other = readScene(mFile->name());
        std::string errors;
        FileCallScript script;
        script.mPlace = "write scene";
        script.mTurn = 1;
        script.mMeanwhile = [&] {
            std::thread([&] {
                EXPECT_FALSE(other->write(errors));
                EXPECT_EQ(Accessor::readFile(mFile->name(), errors), nullptr);
            }).join();
        };
        {
            const FileCallScript::Use use(script);
            EXPECT_EQ(write(), "");
        }
        const std::string isBusy = mFile->name() + " is being written by somebody else.\n";
        EXPECT_EQ(errors, isBusy + isBusy);
        EXPECT_FALSE(other->write(errors));
        EXPECT_EQ(other->failure().kind, Accessor::Failure::kChanged);
    }
}
} // namespace
} // namespace vumo::test
