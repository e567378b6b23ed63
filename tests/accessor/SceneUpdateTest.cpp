#include "vumo/accessor/detail/SceneUpdate.h"

#include "tests/accessor/FileCallScript.h"
#include "tests/support/Golden.h"
#include "tests/support/Random.h"
#include "tests/support/ScratchFile.h"
#include "vumo/accessor/detail/Checksum.h"

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

namespace vumo::test
{
namespace
{
using namespace vumo::Data;
using namespace vumo::Data::detail;

std::string randomBytes(Random& random, std::size_t size)
{
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random.below(3)); // often the same in the old and the new bytes, and often zero
    return bytes;
}

struct Edit
{
    std::size_t position;
    std::string bytes;
};

/// Edits of a file that has that length, in any order; some lie after its end, without gaps.
std::vector<Edit> randomEdits(Random& random, std::size_t length)
{
    std::vector<Edit> edits;
    std::size_t position = 0;
    for (unsigned int count = random.below(5); count > 0; --count)
    {
        position = std::min(position + random.below(9000), length);
        edits.push_back({position, randomBytes(random, random.below(3) == 0 ? random.below(9000) : random.below(40))});
        position += edits.back().bytes.size();
        length = std::max(length, position);
    }
    if (random.below(2) == 0)
        std::reverse(edits.begin(), edits.end());
    return edits;
}

struct RandomChange
{
    std::string before;
    std::string after;
    std::vector<Edit> edits;
};

RandomChange randomChange(Random& random)
{
    RandomChange change;
    change.before = randomBytes(random, random.below(20000));
    change.edits = randomEdits(random, change.before.size());
    std::string& after = change.after = change.before;
    std::size_t end = 0; // of the edits
    for (const Edit& edit : change.edits)
    {
        end = std::max(end, edit.position + edit.bytes.size());
        after.resize(std::max(after.size(), end));
        after.replace(edit.position, edit.bytes.size(), edit.bytes);
    }
    after.resize(end + random.below(static_cast<unsigned int>(after.size() - end) + 1));
    return change;
}

void addTo(FileChange& change, const std::vector<Edit>& edits)
{
    for (const Edit& edit : edits)
        change.add({edit.position, edit.bytes, "seek", "write"});
}

/// What a machine may leave that stops during the change, or while it is undone: any of the sectors, any length
/// between the two, and zero bytes where the one file has no bytes.
std::string bytesOnDisk(Random& random, const std::string& before, const std::string& after)
{
    constexpr std::size_t kSector = 512;
    const auto [shorter, longer] = std::minmax({before.size(), after.size()});
    std::string bytes;
    while (bytes.size() < longer)
    {
        const std::string& source = random.below(2) == 0 ? before : after;
        const std::size_t begin = bytes.size();
        const std::size_t end = std::min(begin + kSector, longer);
        bytes += source.substr(std::min(begin, source.size()), end - begin);
        bytes.resize(end);
    }
    const unsigned int which = random.below(4);
    const std::size_t more = random.below(static_cast<unsigned int>(longer - shorter) + 1);
    bytes.resize(which == 0 ? shorter : which == 1 ? longer : shorter + more);
    return bytes;
}

class SceneUpdateTest : public testing::Test
{
protected:
    bool run(FileChange& change, Accessor::eDurability durability = Accessor::kJournal)
    {
        AccessorState state;
        state.fileName = mFile.name();
        state.durability = durability;
        SceneUpdate update(state);
        return update.begin(mErrors) && update.run(change, FileBlocks(), mErrors);
    }

    /// Leaves the file of the golden record with its first and its last edit made.
    void leaveBetween()
    {
        mFile.setBytes("head, a scene, old tail");
        FileCallScript script = FileCallScript::at("sync scene", 1, FileCallScript::kExit);
        FileChange change(18, "");
        change.add({15, "new", "", ""});
        change.add({0, "HEAD", "", ""});
        ASSERT_TRUE(isEndedBy(script, [&] { return run(change); }));
        ASSERT_EQ(mFile.bytes(), "HEAD, a scene, new tail");
    }

    const ScratchFile mFile{".bin"};
    Accessor::Failure mFailure;
    std::string mErrors;
};

using SceneUpdateGoldenTest = SceneUpdateTest;
using SceneUpdatePropertyTest = SceneUpdateTest;

TEST_F(SceneUpdatePropertyTest, AnyChangeEndedAnywhere_IsMadeAsAWholeOrNotAtAll)
{
    Random random;
    SCOPED_TRACE(random.seedText());
    int made = 0;
    int restored = 0;
    for (int round = 0; round < 250 && !HasFailure(); ++round)
    {
        const auto [before, after, edits] = randomChange(random);
        FileChange change(after.size(), "cut");
        addTo(change, edits);

        mFile.setBytes(before);
        FileCallScript script;
        script.mTurn = 1 + static_cast<int>(random.below(24));
        script.mAction = random.below(2) == 0 ? FileCallScript::kExit : FileCallScript::kExitHalfway;
        const bool isEnded = isEndedBy(script, [&] { return run(change); });
        while (mFile.hasRecord() && !HasFailure()) // also when it is ended again
        {
            script.mTurn = 1 + static_cast<int>(random.below(6));
            isEndedBy(script, [&] { return recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors); });
        }
        const std::string bytes = mFile.bytes();
        EXPECT_TRUE(bytes == after || (isEnded && bytes == before));
        made += bytes == after;
        restored += bytes != after;
    }
    EXPECT_GT(made, 20);
    EXPECT_GT(restored, 20);
}

TEST_F(SceneUpdatePropertyTest, WhateverTheDiskHadWhenTheMachineStopped_IsRestored)
{
    Random random;
    SCOPED_TRACE(random.seedText());
    int restored = 0;
    for (int round = 0; round < 40 && !HasFailure(); ++round)
    {
        const auto [before, after, edits] = randomChange(random);
        FileChange change(after.size(), "cut");
        addTo(change, edits);
        mFile.setBytes(before);
        FileCallScript script = FileCallScript::at("remove record", 1, FileCallScript::kExit);
        isEndedBy(script, [&] { return run(change); });
        const std::string undo = mFile.record();
        for (int disk = 0; disk < 4 && mFile.hasRecord() && !HasFailure(); ++disk)
        {
            const std::string left = bytesOnDisk(random, before, after);
            mFile.setBytes(left);
            EXPECT_TRUE(recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors)) << mErrors;
            EXPECT_TRUE(mFile.bytes() == (left == after ? after : before));
            restored += left != before && left != after;
            mFile.setRecord(undo);
        }
        std::remove(mFile.recordName().c_str());
    }
    EXPECT_GT(restored, 40);
}

TEST_F(SceneUpdateGoldenTest, TheRecord_FollowsItsLayout)
{
    leaveBetween();
    EXPECT_EQ(mFile.record(), goldenBytes("undo_record.hex"));
    EXPECT_TRUE(recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors)) << mErrors;
    EXPECT_EQ(mFile.bytes(), "head, a scene, old tail");
}

TEST_F(SceneUpdateTest, ARecordThatIsDamaged_ChangesNothing)
{
    leaveBetween();
    const std::string file = mFile.bytes();
    const std::string good = mFile.record();
    const auto expectNothing = [&](const std::string& bytes) {
        mFile.setRecord(bytes);
        mErrors.clear();
        const bool isRecovered = recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors);
        EXPECT_EQ(isRecovered, !mFile.hasRecord());
        EXPECT_EQ(mErrors.empty(), !mFile.hasRecord());
        EXPECT_EQ(mFile.bytes(), file);
    };
    for (std::size_t size = 0; size < good.size(); ++size)
    {
        SCOPED_TRACE("cut at " + std::to_string(size));
        expectNothing(good.substr(0, size));
        EXPECT_FALSE(mFile.hasRecord()) << "its writer did not complete it";
        expectNothing(good.substr(0, size) + std::string(good.size() - size, '\0'));
    }
    for (std::size_t i = 0; i < good.size(); ++i)
    {
        expectNothing(std::string(good).replace(i, 8, 8, '\xFF')); // as a size it wraps
        for (const int pattern : {0x01, 0x80, 0xFF})
        {
            SCOPED_TRACE("byte " + std::to_string(i) + ", pattern " + std::to_string(pattern));
            std::string bytes = good;
            bytes[i] = static_cast<char>(bytes[i] ^ pattern);
            expectNothing(bytes);
        }
    }
    std::remove(mFile.recordName().c_str());
}

TEST_F(SceneUpdateTest, AFileThatWasReplacedMeanwhile_IsNotWritten)
{
    mFile.setBytes("head, a scene, old tail");
    const ScratchFile other(".bin");
    other.setBytes("another scene");
    AccessorState state;
    state.fileName = mFile.name();
    state.durability = Accessor::kMemoryOnly;
    SceneUpdate update(state);
    FileChange change(4, "");
    change.add({0, "HEAD", "", ""});
    ASSERT_TRUE(update.begin(mErrors));
    std::filesystem::rename(other.name(), mFile.name());
    EXPECT_FALSE(update.run(change, FileBlocks(), mErrors));
    EXPECT_EQ(mErrors, mFile.name() + " was replaced by somebody else meanwhile.\n");
    EXPECT_EQ(mFile.bytes(), "another scene");
}

TEST_F(SceneUpdateTest, AFileThatIsReplacedDuringTheSave_IsNotTakenForSaved)
{
    FileCallScript script;
    for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
    {
        SCOPED_TRACE(turn);
        mFile.setBytes("head, a scene, old tail");
        const ScratchFile other(".bin");
        other.setBytes("another scene");
        AccessorState state;
        state.fileName = mFile.name();
        SceneUpdate update(state);
        FileChange change(4, "");
        change.add({0, "HEAD", "", ""});
        ASSERT_TRUE(update.begin(mErrors));
        script = FileCallScript();
        script.mTurn = turn;
        script.mMeanwhile = [&] { std::filesystem::rename(other.name(), mFile.name()); };
        const FileCallScript::Use use(script);
        const bool isSaved = update.run(change, FileBlocks(), mErrors);
        EXPECT_EQ(isSaved, !script.hadItsTurn());
        EXPECT_EQ(state.failure.kind, script.hadItsTurn() ? Accessor::Failure::kChanged : Accessor::Failure::kNone);
        EXPECT_EQ(mFile.bytes(), script.hadItsTurn() ? "another scene" : "HEAD");
        EXPECT_FALSE(std::filesystem::exists(mFile.recordName()));
    }
}

TEST_F(SceneUpdateTest, ASignal_EndsTheProcessAfterTheWrite)
{
    for (const Accessor::eDurability durability : {Accessor::kMemoryOnly, Accessor::kJournal})
    {
        mFile.setBytes("head, a scene, old tail");
        const pid_t child = fork();
        if (child == 0)
        {
            FileCallScript script;
            script.mTurn = 1;
            script.mMeanwhile = [] { std::raise(SIGTERM); };
            const FileCallScript::Use use(script);
            FileChange change(18, "");
            change.add({15, "new", "", ""});
            _exit(run(change, durability) ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
        EXPECT_EQ(mFile.bytes(), "head, a scene, new");
        EXPECT_FALSE(mFile.hasRecord());
    }
}

TEST_F(SceneUpdateTest, ALimitOfTheSizeOfFiles_IsAFailureAndNoEnd)
{
    for (const bool isBlocked : {false, true})
    {
        mFile.setBytes(std::string(400, 'a'));
        const pid_t child = fork();
        if (child == 0)
        {
            const rlimit limit = {500, 500}; // too little for the change, and for the record
            setrlimit(RLIMIT_FSIZE, &limit);
            sigset_t signals;
            sigemptyset(&signals);
            sigaddset(&signals, SIGXFSZ);
            if (isBlocked)
                pthread_sigmask(SIG_BLOCK, &signals, nullptr);
            FileChange change(600, "");
            const std::string bytes(400, 'b');
            change.add({200, bytes, "", ""});
            const bool isDone = run(change);
            pthread_sigmask(SIG_UNBLOCK, &signals, nullptr); // nothing waits for that
            _exit(isDone ? 0 : 2);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2) << status;
        EXPECT_EQ(mFile.bytes(), std::string(400, 'a'));
        EXPECT_FALSE(mFile.hasRecord());
    }
}

TEST_F(SceneUpdateTest, AReadThatFails_MakesNoRecordUnfit)
{
    leaveBetween();
    const std::string file = mFile.bytes();
    const std::string good = mFile.record();
    FileCallScript script;
    for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
    {
        SCOPED_TRACE(turn);
        mFile.setBytes(file);
        mFile.setRecord(good);
        script = FileCallScript::at(FileCallScript::kReads, turn, FileCallScript::kFail, EIO);
        const FileCallScript::Use use(script);
        mErrors.clear();
        if (recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors))
            continue;
        EXPECT_EQ(mErrors,
                  "Could not restore " + mFile.name() + " from " + mFile.recordName() + ": Input/output error.\n");
        EXPECT_EQ(mFile.bytes(), file);
        EXPECT_TRUE(mFile.hasRecord());
    }
    EXPECT_EQ(mFile.bytes(), "head, a scene, old tail");

    const File scene(mFile.name(), File::eMode::kUpdate);
    FileChange change(18, "");
    change.add({15, "new", "", ""});
    for (int turn = 1; turn == 1 || script.hadItsTurn(); ++turn)
    {
        script.mCount = 0;
        script.mTurn = turn;
        const FileCallScript::Use use(script);
        const bool isTaken = UndoRecord().take(scene, change);
        EXPECT_EQ(isTaken, !script.hadItsTurn()) << "its surroundings would not fit";
    }
}

TEST_F(SceneUpdateTest, ARecordThatContradictsItself_IsRefused)
{
    leaveBetween();
    const std::string file = mFile.bytes();
    const std::string good = mFile.record();
    constexpr std::size_t kOldLength = 16;
    constexpr std::size_t kFirstPosition = 40;
    constexpr std::size_t kSecondPosition = 64;
    const struct
    {
        std::size_t offset;
        std::uint64_t number;
    } cases[] = {
        {kFirstPosition, 20},         {kFirstPosition, ~0ULL}, {kSecondPosition, 3}, {kSecondPosition, 1ULL << 62},
        {kSecondPosition, ~0ULL - 1}, {kOldLength, 17},        {kOldLength, ~0ULL},
    };
    for (const auto& [offset, number] : cases)
    {
        SCOPED_TRACE(std::to_string(number) + " at " + std::to_string(offset));
        std::string bytes = good;
        bytes.replace(offset, 8, bigEndian(number));
        // The pieces that follow the head: old and new bytes of each of the three ranges.
        Checksum checksum;
        std::size_t position = 0;
        for (const std::size_t size : {112U, 4U, 4U, 3U, 3U, 5U, 0U})
        {
            checksum.add(std::string_view(bytes).substr(position, size));
            position += size;
        }
        ASSERT_EQ(position + 8, bytes.size());
        bytes.replace(position, 8, bigEndian(checksum.value()));
        mFile.setRecord(bytes);
        mErrors.clear();
        EXPECT_FALSE(recover(UndoPlace(mFile.name()), LockWait(0), mFailure, mErrors));
        EXPECT_EQ(mFile.bytes(), file);
    }
    std::remove(mFile.recordName().c_str());
}
} // namespace
} // namespace vumo::test
