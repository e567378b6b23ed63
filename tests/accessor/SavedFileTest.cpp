#include "tests/accessor/AccessorFixture.h"
#include "tests/accessor/FileCallScript.h"
#include "tests/support/ScratchFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <new>
#include <utility>

namespace vumo::test
{
namespace
{
namespace fs = std::filesystem;

struct stat statusOf(const std::string& name)
{
    struct stat status = {};
    EXPECT_EQ(lstat(name.c_str(), &status), 0) << name;
    return status;
}

/// What the action says in a process of its own, which permissions bind as they bind any user.
template <class Action>
std::string asAnyUser(const Action& action)
{
    int ends[2] = {};
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0)
    {
        constexpr uid_t kNobody = 65534;
        const bool isBound =
            geteuid() != 0 || (setresgid(kNobody, kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0);
        const std::string said = isBound ? action() : "cannot become another user";
        const bool isSaid = write(ends[1], said.data(), said.size()) == static_cast<ssize_t>(said.size());
        _exit(isSaid ? 0 : 1);
    }
    close(ends[1]);
    std::string said(4096, '\0');
    std::size_t size = 0;
    for (ssize_t got = 1; got > 0; size += static_cast<std::size_t>(got))
        got = std::max<ssize_t>(0, read(ends[0], &said[size], said.size() - size));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    return said.substr(0, size);
}

class SavedFileTest : public AccessorFixture
{
protected:
    SavedFileTest() { setBytes(mName, mScene); }

    /// Gives the scene a weight and writes it.
    bool save(const std::string& name)
    {
        mErrors = attach(name, "Body", associationsOf("vertex", "weights", *mWeight, 0, "0.75"));
        return mErrors.empty();
    }

    bool isSaved(const std::string& name) const
    {
        return bytesOf(name) != mScene && valueAt(*readScene(name), "Body", "vertex", "weights", 0) == "0.75";
    }

    /// Leaves the scene half written, with its record, as a process does that is killed then.
    void leaveHalfWritten(const std::string& name)
    {
        FileCallScript script = FileCallScript::at("write scene", 2, FileCallScript::kExitHalfway);
        ASSERT_TRUE(isEndedBy(script, [&] { return save(name); }));
        ASSERT_TRUE(fs::exists(fs::canonical(name).string() + kEnding));
        ASSERT_NE(bytesOf(name), mScene);
    }

    /// What a read says that must leave the file and its record alone.
    std::string refusalToRead(const std::string& name)
    {
        const std::string file = bytesOf(name);
        const std::string record = bytesOf(name + kEnding);
        std::string errors;
        OvriBinaryFileAccessor accessor;
        EXPECT_FALSE(accessor.read(name, errors));
        EXPECT_EQ(bytesOf(name), file);
        EXPECT_EQ(bytesOf(name + kEnding), record);
        return errors;
    }

    static constexpr char kEnding[] = ".vumo-undo";
    const std::string mScene = sceneWith(example::cameraChunk() + example::pluginChunk());
    const Ref<Structure> mWeight = valueStructure("Weight");
    const ScratchFolder mFolder;
    const std::string mName = mFolder / "scene.ob";
    std::string mErrors;
};

TEST_F(SavedFileTest, TheFile_StaysTheOneThatItWas)
{
    const std::string other = mFolder / "other.ob";
    fs::create_hard_link(mName, other);
    ASSERT_EQ(chmod(mName.c_str(), 0640), 0);
    const struct stat before = statusOf(mName);
    ASSERT_TRUE(save(mName)) << mErrors;
    const struct stat after = statusOf(mName);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_nlink, 2U);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_TRUE(isSaved(other));
}

TEST_F(SavedFileTest, RichScenes_AreWrittenAsWasEstimated)
{
    for (const RichScene& kind : kRichScenes)
    {
        const std::string name = mFolder / (std::string("rich") + kind.ending);
        setBytes(name, kind.bytes);
        const auto accessor = readScene(name);
        accessor->setNumbers(kExact);
        Accessor::WriteCost cost;
        EXPECT_TRUE(accessor->estimateWrite(cost, mErrors)) << mErrors;
        EXPECT_EQ(cost.bytes, 0U);
        edit(*accessor);
        EXPECT_TRUE(accessor->estimateWrite(cost, mErrors)) << mErrors;
        EXPECT_EQ(bytesOf(name), kind.bytes);
        ASSERT_TRUE(accessor->write(mErrors)) << mErrors;
        const std::string after = bytesOf(name);
        const auto change = std::mismatch(kind.bytes.begin(), kind.bytes.end(), after.begin(), after.end());
        EXPECT_EQ(cost.position, static_cast<std::uint64_t>(change.second - after.begin()));
        EXPECT_EQ(cost.oldLength, kind.bytes.size());
        EXPECT_EQ(cost.newLength, after.size());
        EXPECT_GT(cost.bytes, 0U);
        EXPECT_LE(cost.position + cost.bytes, after.size());

        const Ref<Structure> other = Structure::make("Label", {{Member::kInt8, 1, "Value"}});
        accessor->associations()["new"] = associationsOf("vertex", "labels", *other, 0, "1");
        EXPECT_FALSE(accessor->estimateWrite(cost, mErrors));
        EXPECT_EQ(accessor->failure().kind, Accessor::Failure::kRefused);
        mErrors.clear();
    }
}

TEST_F(SavedFileTest, AnEstimateThatThrows_IsOver)
{
    class Throwing : public OvriBinaryFileAccessor
    {
    public:
        bool write(std::string& errors) const override
        {
            if (std::exchange(mThrows, false))
                throw std::bad_alloc();
            return OvriBinaryFileAccessor::write(errors);
        }

    private:
        mutable bool mThrows = true;
    };
    Throwing accessor;
    Accessor::WriteCost cost;
    ASSERT_TRUE(accessor.read(mName, mErrors)) << mErrors;
    const Ref<Structure> weight = valueStructure("Weight");
    accessor.associations()["new"] = associationsOf("vertex", "weights", *weight, 0, "1");
    EXPECT_THROW(accessor.estimateWrite(cost, mErrors), std::bad_alloc);
    EXPECT_TRUE(accessor.write(mErrors)) << mErrors;
    EXPECT_NE(bytesOf(mName), mScene);
}

TEST_F(SavedFileTest, TheRecord_IsForThoseWhoMayReadTheFile)
{
    for (const mode_t mode : {0600U, 0640U, 0664U})
    {
        setBytes(mName, mScene);
        ASSERT_EQ(chmod(mName.c_str(), mode), 0);
        leaveHalfWritten(mName);
        EXPECT_EQ(statusOf(mName + kEnding).st_mode & 07777, mode);
        EXPECT_TRUE(Accessor::recover(mName, mErrors)) << mErrors;
    }
}

TEST_F(SavedFileTest, ASymbolicLink_StaysOneAndItsRecordStandsBesideTheFile)
{
    const std::string link = mFolder / "link.ob";
    fs::create_directory(mFolder / "deep");
    const std::string name = mFolder / "deep/scene.ob";
    fs::rename(mName, name);
    fs::create_symlink("deep/scene.ob", link);
    leaveHalfWritten(link);
    EXPECT_FALSE(fs::exists(link + kEnding));
    ASSERT_TRUE(readScene(link));
    EXPECT_EQ(bytesOf(name), mScene);
    EXPECT_TRUE(fs::is_symlink(link));

    ASSERT_TRUE(save(link)) << mErrors;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(isSaved(name));
}

TEST_F(SavedFileTest, AFileInADirectoryThatCannotBeWrittenTo_IsWritten)
{
    ASSERT_EQ(chmod(mName.c_str(), 0666), 0);
    ASSERT_EQ(chmod(mFolder.name().c_str(), 0555), 0);
    EXPECT_EQ(asAnyUser([&] { return save(mName) ? "saved" : mErrors; }), "saved");
    EXPECT_TRUE(isSaved(mName));

    setBytes(mName, mScene);
    EXPECT_EQ(asAnyUser([&] {
                  FileCallScript script = FileCallScript::at("write scene", 3, FileCallScript::kFailHalfway, ENOSPC);
                  const FileCallScript::Use use(script);
                  return save(mName) ? "saved" : mErrors;
              }),
              "Failed to write the backward chunk size.");
    EXPECT_EQ(bytesOf(mName), mScene);
}

TEST_F(SavedFileTest, AFileWhoseNameLeavesNoneForARecord_IsWritten)
{
    const fs::path before = fs::current_path();
    fs::current_path(mFolder.name());
    const std::string longest = std::string(250, 'd') + ".ob";
    for (const char* const place : {"a long name", "a long path"})
    {
        SCOPED_TRACE(place);
        setBytes(longest, mScene);
        EXPECT_TRUE(save(longest)) << mErrors;
        EXPECT_TRUE(isSaved(longest));
        fs::remove(longest);
        for (int depth = 0; depth < 17; ++depth)
        {
            fs::create_directory(longest);
            fs::current_path(longest);
        }
    }
    fs::current_path(before);
}

TEST_F(SavedFileTest, AFileThatCannotBeWrittenTo_IsRead)
{
    ASSERT_EQ(chmod(mName.c_str(), 0444), 0);
    ASSERT_EQ(chmod(mFolder.name().c_str(), 0755), 0);
    EXPECT_EQ(asAnyUser([&] { return save(mName) ? "saved" : mErrors; }), "Could not open " + mName + " for writing.");

    ASSERT_EQ(chmod(mName.c_str(), 0644), 0);
    leaveHalfWritten(mName);
    ASSERT_EQ(chmod(mName.c_str(), 0444), 0);
    EXPECT_EQ(asAnyUser([&] { return refusalToRead(mName); }),
              "Writing " + mName + " was interrupted. Make it writable and read it again: " + mName + kEnding +
                  " holds what restores it.\n");

    setBytes(mName + kEnding, bytesOf(mName + kEnding).substr(0, 50)); // and so its writer did not come to the scene
    ASSERT_EQ(chmod(mName.c_str(), 0644), 0);
    setBytes(mName, mScene);
    ASSERT_EQ(chmod(mName.c_str(), 0444), 0);
    EXPECT_EQ(asAnyUser([&] { return readScene(mName) ? "read" : ""; }), "read");
}

TEST_F(SavedFileTest, Writing_IsDoneByOneAtATime)
{
    const int other = open(mName.c_str(), O_RDONLY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_FALSE(save(mName));
    EXPECT_EQ(mErrors, mName + " is being written by somebody else.\n");
    EXPECT_EQ(bytesOf(mName), mScene);
    close(other);
    EXPECT_TRUE(save(mName)) << mErrors;

    setBytes(mName, mScene);
    leaveHalfWritten(mName);
    const int writer = open(mName.c_str(), O_RDONLY);
    ASSERT_EQ(flock(writer, LOCK_EX), 0);
    EXPECT_EQ(refusalToRead(mName), mName + " is being written by somebody else.\n");
    ASSERT_EQ(chmod(mName.c_str(), 0444), 0);
    ASSERT_EQ(chmod(mFolder.name().c_str(), 0755), 0);
    EXPECT_EQ(asAnyUser([&] { return refusalToRead(mName); }), mName + " is being written by somebody else.\n");
    ASSERT_EQ(chmod(mName.c_str(), 0644), 0);
    close(writer);
    EXPECT_TRUE(readScene(mName));
    EXPECT_EQ(bytesOf(mName), mScene);
}

TEST_F(SavedFileTest, Failures_HaveAKindAndTheSystemsNumber)
{
    using Failure = Accessor::Failure;
    const std::string bare = "//Ovri ASCII 2014 scene\nselect -ne :a;\n// End of it\n";
    const struct
    {
        const char* ending;
        std::string scene;
        std::string faulty; // in its metadata
    } kinds[] = {{".oa", bare, "//Ovri ASCII 2014 scene\napplyMetadata x;\n// End of it\n"},
                 {".ob", mScene, sceneWith(chunk("DATS", "x"))}};
    for (const auto& kind : kinds)
    {
        const std::string name = mFolder / (std::string("kinds") + kind.ending);
        std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(name);
        std::string errors;
        const auto reads = [&](const std::string& file) { return accessor->read(file, errors); };
        const auto writes = [&] { return accessor->write(errors); };
        const struct
        {
            const char* what;
            std::function<bool()> call;
            Failure::eKind kind;
            int systemError;
        } cases[] = {
            {"write without a name", writes, Failure::kNoFile, ENOENT},
            {"read without a name", [&] { return reads(""); }, Failure::kNoFile, 0},
            {"no file", [&] { return reads(mFolder / "none"); }, Failure::kNoFile, ENOENT},
            {"no folder", [&] { return reads(name + "/none"); }, Failure::kNoFile, ENOTDIR},
            {"write to no file", writes, Failure::kNoFile, ENOTDIR},
            {"a folder", [&] { return reads(mFolder.name()); }, Failure::kNotScene, EINVAL},
            {"read", [&] { return reads(name); }, Failure::kNone, 0},
            {"write", writes, Failure::kNone, 0},
            {"refused",
             [&] {
                 accessor->associations()[std::string(1, '\0')] =
                     associationsOf("vertex", "weights", *mWeight, 0, "0.75");
                 return writes();
             },
             Failure::kRefused, 0},
            {"changed",
             [&] {
                 accessor->clear();
                 attach(name, "Body", associationsOf("vertex", "weights", *mWeight, 0, "0.75"));
                 return writes();
             },
             Failure::kChanged, 0},
            {"locked",
             [&] {
                 const int writer = open(name.c_str(), O_RDONLY);
                 EXPECT_EQ(flock(writer, LOCK_EX), 0);
                 const bool isWritten = writes();
                 close(writer);
                 return isWritten;
             },
             Failure::kLocked, 0},
            {"written to",
             [&] {
                 setBytes(name + kEnding, "x");
                 const int writer = open(name.c_str(), O_RDONLY);
                 EXPECT_EQ(flock(writer, LOCK_EX), 0);
                 const bool isRead = reads(name);
                 close(writer);
                 return isRead;
             },
             Failure::kLocked, 0},
            {"a foreign record", [&] { return reads(name); }, Failure::kNotRestored, 0},
            {"a record that is a folder",
             [&] {
                 fs::remove(name + kEnding);
                 fs::create_directory(name + kEnding);
                 const bool isRead = reads(name);
                 fs::remove(name + kEnding);
                 return isRead;
             },
             Failure::kNotRestored, EINVAL},
            {"not a scene",
             [&] {
                 setBytes(name, "some text that is no scene at all");
                 return reads(name);
             },
             Failure::kNotScene, 0},
            {"malformed",
             [&] {
                 setBytes(name, kind.faulty);
                 return reads(name);
             },
             Failure::kMalformed, 0},
            {"a bad disk",
             [&] {
                 FileCallScript script = FileCallScript::at(FileCallScript::kReads, 1, FileCallScript::kFail, EIO);
                 const FileCallScript::Use use(script);
                 return reads(name);
             },
             Failure::kSystem, EIO},
        };
        setBytes(name, kind.scene);
        EXPECT_EQ(accessor->failure().kind, Failure::kNone);
        for (const auto& row : cases)
        {
            SCOPED_TRACE(kind.ending + std::string(" ") + row.what);
            errors.clear();
            EXPECT_EQ(row.call(), row.kind == Failure::kNone) << errors;
            EXPECT_EQ(accessor->failure().kind, row.kind) << errors;
            EXPECT_EQ(accessor->failure().systemError, row.systemError) << errors;
            EXPECT_EQ(accessor->failure().systemReason(), row.systemError == 0 ? "" : std::strerror(row.systemError));
        }
        setBytes(name, kind.scene);
        ASSERT_EQ(chmod(name.c_str(), 0), 0);
        EXPECT_EQ(asAnyUser([&] {
                      return std::to_string(!reads(name) && accessor->failure().kind == Failure::kNoAccess &&
                                            accessor->failure().systemError == EACCES);
                  }),
                  "1");
        ASSERT_EQ(chmod(name.c_str(), 0644), 0);
    }
}

TEST_F(SavedFileTest, ARecordThatDoesNotFitTheFile_IsNotApplied)
{
    leaveHalfWritten(mName);
    const std::string half = bytesOf(mName);
    const std::string record = bytesOf(mName + kEnding);
    const std::string other = mFolder / "other.ob";
    setBytes(other, mScene);
    ASSERT_TRUE(save(other)) << mErrors;
    const std::string start = "The undo record " + mName + kEnding + " does not fit " + mName + " any more";
    const auto changedAt = [&](std::size_t position) {
        std::string bytes = half;
        bytes[position] = static_cast<char>(bytes[position] ^ 0x55);
        return bytes;
    };
    const struct
    {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"another head", changedAt(3)},
        {"another size of the main chunk", changedAt(15)},
        {"another byte of the scene in front of the trailer", changedAt(mScene.size() - 200)},
        {"another byte among the written ones", changedAt(half.size() - 80)},
        {"a longer file", half + std::string(1000, 'x')},
        {"all of the new file and more", bytesOf(other) + "x"},
        {"a shorter file", half.substr(0, mScene.size() - 1)},
        {"another scene", sceneWith(example::cameraChunk())},
    };
    for (const auto& sample : cases)
    {
        SCOPED_TRACE(sample.what);
        setBytes(mName, sample.bytes);
        EXPECT_THAT(refusalToRead(mName), testing::StartsWith(start));
        mErrors.clear();
        EXPECT_FALSE(Accessor::recover(mName, mErrors));
        EXPECT_THAT(mErrors, testing::StartsWith(start));
        OvriBinaryFileAccessor accessor;
        accessor.read(mName, mErrors);
        mErrors.clear();
        EXPECT_FALSE(accessor.write(mErrors));
        EXPECT_THAT(mErrors, testing::StartsWith(start));
        EXPECT_EQ(bytesOf(mName), sample.bytes);
        EXPECT_EQ(bytesOf(mName + kEnding), record);
    }
    setBytes(mName, half);
    EXPECT_TRUE(Accessor::recover(mName, mErrors));
    EXPECT_EQ(bytesOf(mName), mScene);
    EXPECT_FALSE(fs::exists(mName + kEnding));
}

TEST_F(SavedFileTest, ARecordOfTheCompleteChange_IsOnlyRemoved)
{
    FileCallScript script = FileCallScript::at("remove record", 1, FileCallScript::kExit);
    ASSERT_TRUE(isEndedBy(script, [&] { return save(mName); }));
    ASSERT_TRUE(fs::exists(mName + kEnding));
    EXPECT_TRUE(isSaved(mName)) << "a save that was done is not taken back";
    EXPECT_FALSE(fs::exists(mName + kEnding));
}

TEST_F(SavedFileTest, WhatIsNoRecord_IsLeftAlone)
{
    const std::string refusal = mName + kEnding + " is not an undo record that can be used. Move it away to go on.\n";
    leaveHalfWritten(mName);
    std::string newer = bytesOf(mName + kEnding);
    newer[11] = 2;
    for (const std::string& bytes : {std::string("my notes on this scene"), newer})
    {
        setBytes(mName + kEnding, bytes);
        EXPECT_EQ(refusalToRead(mName), refusal);
    }
    fs::remove(mName + kEnding);
    setBytes(mName, mScene);
    leaveHalfWritten(mName);
    fs::rename(mName + kEnding, mFolder / "elsewhere");
    fs::create_symlink(mFolder / "elsewhere", mName + kEnding);
    EXPECT_EQ(refusalToRead(mName), refusal);
    fs::remove(mName + kEnding);
    ASSERT_EQ(mkfifo((mName + kEnding).c_str(), 0600), 0);
    std::string errors;
    EXPECT_FALSE(Accessor::recover(mName, errors));
    EXPECT_EQ(errors, refusal);
}

TEST_F(SavedFileTest, ARecordOfSomebodyElse_IsNoReasonToChangeAFile)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the administrator gives files away";
    leaveHalfWritten(mName);
    ASSERT_EQ(chown((mName + kEnding).c_str(), 65534, 65534), 0);
    ASSERT_EQ(chmod(mFolder.name().c_str(), 01777), 0);
    EXPECT_THAT(refusalToRead(mName), testing::HasSubstr("is not an undo record that can be used"));
    ASSERT_EQ(chmod(mFolder.name().c_str(), 0777), 0);
    EXPECT_TRUE(Accessor::recover(mName, mErrors)) << "whoever made the record could replace the scene as well";
    EXPECT_EQ(bytesOf(mName), mScene);
}

TEST_F(SavedFileTest, WhatIsNoFile_IsNeitherReadNorWaitedFor)
{
    const std::string pipe = mFolder / "pipe.ob";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& name : {pipe, mFolder / "pipe.oa", std::string("/dev/null")})
    {
        if (name.back() == 'a')
            fs::rename(pipe, name);
        OvriBinaryFileAccessor binary;
        EXPECT_FALSE(binary.read(name, mErrors));
        EXPECT_EQ(mErrors, "File not valid.");
        EXPECT_FALSE(binary.isFileSupported(name));
        OvriAsciiFileAccessor ascii;
        EXPECT_FALSE(ascii.read(name, mErrors));
        EXPECT_EQ(mErrors, "Could not open " + name);
        for (const Accessor* const accessor : {static_cast<Accessor*>(&binary), static_cast<Accessor*>(&ascii)})
        {
            mErrors.clear();
            EXPECT_FALSE(accessor->write(mErrors));
            EXPECT_EQ(mErrors, "Could not open " + name + " for writing.");
        }
    }
}

TEST_F(SavedFileTest, AProcessThatCanOpenNoMoreFiles_SeesNoRecords)
{
    FileCallScript script = FileCallScript::at(FileCallScript::kOpens, 1, FileCallScript::kFailForGood, EMFILE);
    const FileCallScript::Use use(script);
    OvriBinaryFileAccessor accessor;
    EXPECT_FALSE(accessor.read(mName, mErrors));
    EXPECT_EQ(mErrors, "File not valid.");
}

TEST_F(SavedFileTest, Recover_HasNothingToDoWithoutARecord)
{
    for (const std::string& name : {mName, mFolder / "absent.ob", std::string()})
        EXPECT_TRUE(Accessor::recover(name, mErrors));
    EXPECT_EQ(mErrors, "");
    EXPECT_EQ(bytesOf(mName), mScene);
}
} // namespace
} // namespace vumo::test
