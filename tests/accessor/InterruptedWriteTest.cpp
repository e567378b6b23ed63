#include "tests/accessor/AccessorFixture.h"
#include "tests/accessor/FileCallScript.h"
#include "tests/support/FullDisk.h"

#include <algorithm>
#include <filesystem>

namespace vumo::test
{
namespace
{
using Script = FileCallScript;

/// A kind of scene file, and what each step of writing one says when it fails.
struct Kind
{
    const char* ending;
    std::string bare;
    std::vector<std::string> writeMessages;
    std::vector<std::string> seekMessages;
    std::vector<std::string> searchMessages; // of seeks and reads on the way to what changes
    std::vector<std::string> moveMessages;   // of those of what moves
    std::vector<std::string> readMessages;
    std::size_t ofMetadata; // the place of its message: all that changes in a file of the same size
};

std::vector<Kind> bothKinds()
{
    return {
        {".oa",
         "//Ovri ASCII 2014 scene\nselect -ne :a;\n//" + std::string(9000, 'x') + "\n// End of it\n",
         {"Failed to append the file trailer."},
         {"Could not seek to metadata start."},
         {"Could not seek to trailer start.", "Could not read trailer.", "Could not seek to the first metadata block.",
          "Failed reading line while searching metadata start."},
         {"Failed to seek to the trailer position.", "Failed to read the file trailer."},
         {"Error reading header.", "Could not seek to end.", "Could not seek previous block.", "Could not read block."},
         0},
        {".ob",
         sceneWith(example::cameraChunk() + example::pluginChunk()),
         {"Failed to write the new trailer size.", "Failed to write the new trailer.",
          "Failed to write the backward chunk size.", "Failed to write the new main chunk size."},
         {"Failed to seek to the trailer size position.", "Failed to seek to the trailer data start.",
          "Failed to write the backward chunk size.", "Failed to the main chunk size position."},
         {"Could not read file identification.", "Error seeking to the end of main chunk.",
          "Error reading the trailer-size chunk header.", "Could not read trailer backward offset.",
          "Could not seek to start of trailer.", "Error reading chunk header before metadata."},
         {"Error reading chunk before metadata."},
         {"Could not read file identification.", "Error seeking to the end of main chunk.",
          "Error reading the trailer-size chunk header.", "Could not read trailer backward offset.",
          "Could not seek to start of trailer.", "Could not read chunk header.\n"},
         1}};
}

/// A scene with the weights of one node, which a write changes.
class InterruptedWriteTest : public AccessorFixture
{
protected:
    static constexpr unsigned int kCount = 300;

    struct Change
    {
        const char* what;
        unsigned int count;
        const char* value;
        bool keepsOthers; // nodes around that one, which are not read, and changes another one after them
    };

    static constexpr Change kChanges[] = {{"larger", 700, "0.5", false},
                                          {"smaller", 3, "0.5", false},
                                          {"of one size", kCount, "0.7", false},
                                          {"larger among others", 500, "0.5", true},
                                          {"smaller among others", 3, "0.5", true}};

    /// Makes the scene file, the accessor that is going to write to it, and the bytes before and after that.
    void prepare(const Kind& kind, const Change& change)
    {
        mFile = std::make_unique<ScratchFile>(kind.ending);
        mFile->setBytes(kind.bare);
        mAccessor = readScene(mFile->name());
        mAccessor->setStructures({mWeight.get()});
        mAccessor->setDurability(Accessor::kMemoryOnly);
        setWeights({"", kCount, "0.5", change.keepsOthers});
        for (const char* const other : {"Arm", "Head"}) // long enough to be left out of what is written
        {
            if (change.keepsOthers)
                setWeights(other, 700, "0.25");
        }
        std::string errors;
        ASSERT_TRUE(mAccessor->write(errors)) << errors;
        mOld = mFile->bytes();
        setWeights(change);
        ASSERT_TRUE(mAccessor->write(errors)) << errors;
        mNew = mFile->bytes();
        ASSERT_NE(mNew, mOld);
        mAccessor->setDurability(Accessor::kJournal);
        mAccessor->setConflict(Accessor::kOverwrite); // tests put the old file back again and again
        mChange = change;
        putBack();
    }

    /// Goes back to the old file. An accessor that keeps what others wrote has to read that again.
    void putBack()
    {
        mFile->setBytes(mOld);
        if (!mChange.keepsOthers)
            return;
        const std::set<std::string> names = {"Body", "Leg"};
        mAccessor = Accessor::accessorByExtension(mFile->name());
        mAccessor->setUnread(Accessor::kKeep);
        ASSERT_TRUE(mAccessor->read(mFile->name(), nullptr, &names, mErrors)) << mErrors;
        ASSERT_EQ(mAccessor->unread().size(), 2U);
        setWeights(mChange);
    }

    void setWeights(const Change& change)
    {
        setWeights("Body", change.count, change.value);
        if (change.keepsOthers)
            setWeights("Leg", change.count, change.value);
    }

    void setWeights(const char* node, unsigned int count, const char* value)
    {
        Stream stream(*mWeight, "weights");
        for (unsigned int i = 0; i < count; ++i)
            setValue(stream, i, value);
        mAccessor->associations()[node].channel("vertex").setDataStream(stream);
    }

    bool write()
    {
        mErrors.clear();
        return mAccessor->write(mErrors);
    }

    /// Writes with a script in force.
    bool write(Script& script)
    {
        const Script::Use use(script);
        return write();
    }

    /// The messages of the steps that change something.
    std::vector<std::string> ofThisChange(const Kind& kind, const std::vector<std::string>& messages) const
    {
        if (mNew.size() != mOld.size())
            return messages;
        return {messages[kind.ofMetadata]};
    }

    /// Reads the file that a crash left: afterwards it is the old one or the new one.
    void expectOldOrNewAfterRead() const
    {
        const auto accessor = readScene(mFile->name());
        ASSERT_TRUE(accessor);
        EXPECT_FALSE(mFile->hasRecord());
        const std::string bytes = mFile->bytes();
        EXPECT_TRUE(bytes == mOld || bytes == mNew) << bytes.size();
        const Stream* stream = accessor->associations()["Body"].channel("vertex").findDataStream("weights");
        ASSERT_TRUE(stream);
        EXPECT_EQ(stream->elementCount() == kCount && valueAt(*accessor, "Body", "vertex", "weights", 2) == "0.5",
                  bytes == mOld);
    }

    /// Ends the recovery of the file at each of its calls.
    void expectOldOrNewAfterCrashesOfRecovery()
    {
        const std::string file = mFile->bytes();
        const std::string undo = mFile->record();
        bool isEnded = true;
        for (int turn = 1; isEnded && !HasFailure(); ++turn)
        {
            SCOPED_TRACE("recovery ended at its call " + std::to_string(turn));
            mFile->setBytes(file);
            mFile->setRecord(undo);
            Script script;
            script.mTurn = turn;
            script.mAction = Script::kExitHalfway;
            isEnded = isEndedBy(script, [&] { return Accessor::recover(mFile->name(), mErrors); });
            expectOldOrNewAfterRead();
        }
    }

    /// Calls `test` for both kinds of files and all kinds of changes.
    template <class Test>
    void forAll(const Test& test)
    {
        for (const Kind& kind : bothKinds())
        {
            for (const Change& change : kChanges)
            {
                SCOPED_TRACE(std::string(kind.ending) + " " + change.what);
                prepare(kind, change);
                test(kind);
                mAccessor.reset();
            }
        }
    }

    const Ref<Structure> mWeight = valueStructure("Weight");
    Change mChange = {};
    std::unique_ptr<ScratchFile> mFile;
    std::unique_ptr<Accessor> mAccessor;
    std::string mOld;
    std::string mNew;
    std::string mErrors;
};

TEST_F(InterruptedWriteTest, ACrashAtAnyCall_LeavesTheOldOrTheNewFile)
{
    int calls = 0;
    forAll([&](const Kind&) {
        bool isEnded = true;
        for (int turn = 1; isEnded && !HasFailure(); ++turn)
        {
            for (const Script::eAction action : {Script::kExit, Script::kExitHalfway})
            {
                SCOPED_TRACE("ended at call " + std::to_string(turn) + (action == Script::kExit ? "" : ", halfway"));
                putBack();
                Script script;
                script.mTurn = turn;
                script.mAction = action;
                isEnded = isEndedBy(script, [&] { return write(); });
                if (isEnded && mFile->hasRecord() && action == Script::kExitHalfway)
                    expectOldOrNewAfterCrashesOfRecovery();
                expectOldOrNewAfterRead();
                calls += isEnded ? 1 : 0;
            }
        }
        EXPECT_EQ(mFile->bytes(), mNew) << "the last one came to its end";
    });
    RecordProperty("crashes", calls);
}

TEST_F(InterruptedWriteTest, ACrashWhileTheOldBytesArePutBack_LeavesTheOldOrTheNewFile)
{
    forAll([&](const Kind&) {
        for (const char* place : {"sync scene", "remove record", "sync directory"})
        {
            bool isEnded = true;
            for (int later = 1; isEnded && !HasFailure(); ++later)
            {
                SCOPED_TRACE(std::string(place) + " fails, ended " + std::to_string(later) + " calls later");
                putBack();
                Script script;
                script.mPlace = place;
                script.mTurn = place == std::string("sync directory") ? 2 : 1;
                script.mAction = Script::kFail;
                script.mError = EIO;
                script.mExitLater = later;
                isEnded = isEndedBy(script, [&] { return !write(); });
                expectOldOrNewAfterRead();
            }
        }
    });
}

TEST_F(InterruptedWriteTest, TheRecord_IsOnTheDiskWhileTheFileChanges)
{
    const std::vector<std::string> begin = {"create record",  "share record", "write record", "sync record",
                                            "sync directory", "write scene",  "sync scene"};
    const std::vector<std::string> end = {"remove record", "sync directory"};
    forAll([&](const Kind&) {
        Script script;
        EXPECT_TRUE(write(script)) << mErrors;
        std::vector<std::string> expected = begin;
        if (mNew.size() < mOld.size())
            expected.insert(expected.end(), {"cut scene", "sync scene"});
        expected.insert(expected.end(), end.begin(), end.end());
        EXPECT_EQ(script.mLog, expected);
        EXPECT_EQ(mFile->bytes(), mNew);

        script = Script();
        EXPECT_TRUE(write(script)) << mErrors;
        EXPECT_EQ(script.mLog, std::vector<std::string>{"sync scene"}) << "nothing has changed";
        EXPECT_EQ(mFile->bytes(), mNew);

        putBack();
        mAccessor->setDurability(Accessor::kMemoryOnly);
        script = Script();
        EXPECT_TRUE(write(script)) << mErrors;
        expected = {"write scene"};
        if (mNew.size() < mOld.size())
            expected.push_back("cut scene");
        EXPECT_EQ(script.mLog, expected);
        EXPECT_EQ(mFile->bytes(), mNew);
    });
}

TEST_F(InterruptedWriteTest, ACallThatFails_LeavesTheFileAsItWas)
{
    forAll([&](const Kind& kind) {
        for (const auto& [action, error] :
             {std::pair(Script::kFail, ENOSPC), std::pair(Script::kFail, EIO), std::pair(Script::kFailHalfway, ENOSPC)})
        {
            std::vector<std::string> messages;
            Script script;
            for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
            {
                SCOPED_TRACE("call " + std::to_string(turn) + " fails, error " + std::to_string(error));
                putBack();
                script = Script();
                script.mTurn = turn;
                script.mAction = action;
                script.mError = error;
                const bool isWritten = write(script);
                const bool isHarmless = script.mLog.size() > 1 && script.mLog[1] == "share record" && turn == 2;
                EXPECT_EQ(isWritten, isHarmless || !script.hadItsTurn());
                EXPECT_EQ(mFile->bytes(), isWritten ? mNew : mOld);
                EXPECT_FALSE(mFile->hasRecord());
                EXPECT_EQ(isWritten, mErrors.empty());
                EXPECT_EQ(mAccessor->failure().kind, isWritten ? Accessor::Failure::kNone : Accessor::Failure::kSystem);
                EXPECT_EQ(mAccessor->failure().systemError, isWritten ? 0 : error);
                if (!isWritten && (messages.empty() || messages.back() != mErrors))
                    messages.push_back(mErrors);
            }
            const std::string reason = std::string(": ") + std::strerror(error) + ".\n";
            std::vector<std::string> expected = {"Could not write the undo record " + mFile->recordName() + reason};
            const std::vector<std::string> steps = ofThisChange(kind, kind.writeMessages);
            expected.insert(expected.end(), steps.begin(), steps.end());
            if (expected.back() != kind.writeMessages.back())
                expected.push_back(kind.writeMessages.back()); // also that of a sync
            if (mNew.size() < mOld.size())
                expected.push_back("Could not truncate the file.");
            expected.push_back("Could not remove the undo record " + mFile->recordName() + reason);
            EXPECT_EQ(messages, expected);
        }
    });
}

TEST_F(InterruptedWriteTest, ASeekOrAReadThatFails_LeavesTheFileAsItWas)
{
    forAll([&](const Kind& kind) {
        std::vector<std::string> all;
        for (const Script::eCalls calls : {Script::kSeeks, Script::kReads})
        {
            std::vector<std::string> messages;
            Script script;
            for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
            {
                SCOPED_TRACE((calls == Script::kSeeks ? "seek " : "read ") + std::to_string(turn));
                putBack();
                script = Script();
                script.mCalls = calls;
                script.mTurn = turn;
                script.mAction = Script::kFail;
                script.mError = EIO;
                const bool isWritten = write(script);
                EXPECT_TRUE(isWritten || !mErrors.empty());
                EXPECT_EQ(mFile->bytes(), isWritten ? mNew : mOld);
                EXPECT_FALSE(mFile->hasRecord());
                if (!isWritten && (messages.empty() || messages.back() != mErrors))
                    messages.push_back(mErrors);
                EXPECT_TRUE(isWritten || calls == Script::kSeeks || mAccessor->failure().systemError == EIO);
            }
            all.insert(all.end(), messages.begin(), messages.end());
            const std::vector<std::string> last = ofThisChange(kind, kind.seekMessages);
            if (calls == Script::kSeeks)
            {
                EXPECT_EQ(std::vector<std::string>(messages.end() - static_cast<int>(last.size()), messages.end()),
                          last);
            }
            else
            {
                EXPECT_NE(std::find(messages.begin(), messages.end(),
                                    "Could not read the old bytes of " + mFile->name() + ": Input/output error.\n"),
                          messages.end());
            }
        }
        EXPECT_THAT(all, testing::IsSupersetOf(kind.searchMessages));
        const bool hasTrailerLine = kind.ending == std::string(".oa"); // which moves, too
        if (mChange.keepsOthers || (hasTrailerLine && mNew.size() != mOld.size()))
        {
            EXPECT_THAT(all, testing::IsSupersetOf(kind.moveMessages));
        }
    });
}

TEST_F(InterruptedWriteTest, ARead_GivesAllThatTheFileHasOrFails)
{
    forAll([&](const Kind& kind) {
        std::set<std::string> messages;
        for (const auto& [calls, action] :
             {std::pair(Script::kSeeks, Script::kFail), std::pair(Script::kReads, Script::kFail),
              std::pair(Script::kReads, Script::kShorten), std::pair(Script::kReads, Script::kInterrupt)})
        {
            Script script;
            for (int turn = 1; turn == 1 || script.hadItsTurn(); ++turn)
            {
                SCOPED_TRACE((calls == Script::kSeeks ? "seek " : "read ") + std::to_string(turn));
                script = Script();
                script.mCalls = calls;
                script.mTurn = turn;
                script.mAction = action;
                script.mError = EIO;
                const auto accessor = Accessor::accessorByExtension(mFile->name());
                const Script::Use use(script);
                mErrors.clear();
                const bool isRead = accessor->read(mFile->name(), mErrors);
                EXPECT_EQ(isRead, mErrors.empty());
                EXPECT_EQ(isRead, action != Script::kFail || !script.hadItsTurn());
                EXPECT_EQ(accessor->structures().size(), isRead ? 1U : 0U);
                const std::size_t nodes = mAccessor->unread().size() + mAccessor->associations().size();
                EXPECT_EQ(accessor->associations().size(), isRead ? nodes : 0U);
                EXPECT_EQ(mErrors.find("seek") != std::string::npos, !isRead && calls == Script::kSeeks) << mErrors;
                messages.insert(mErrors);
            }
        }
        EXPECT_THAT(messages, testing::IsSupersetOf(kind.readMessages));
    });
}

TEST_F(InterruptedWriteTest, CallsThatAreInterruptedOrDoneInPart_AreCompleted)
{
    forAll([&](const Kind&) {
        for (const Script::eAction action : {Script::kInterrupt, Script::kShorten})
        {
            Script script;
            for (int turn = 1; turn == 1 || script.hadItsTurn(); ++turn)
            {
                putBack();
                script = Script();
                script.mTurn = turn;
                script.mAction = action;
                EXPECT_TRUE(write(script)) << mErrors;
                EXPECT_EQ(mFile->bytes(), mNew);
                EXPECT_FALSE(mFile->hasRecord());
            }
        }
    });
}

TEST_F(InterruptedWriteTest, ADiskThatIsFullAnywhere_LeavesTheFileAsItWas)
{
    forAll([&](const Kind&) {
        const std::size_t last = std::max(mOld.size(), mNew.size());
        const auto same = std::mismatch(mNew.rbegin(), mNew.rend(), mOld.rbegin(), mOld.rend()).first - mNew.rbegin();
        const std::size_t changed = mNew.size() - (mNew.size() == mOld.size() ? static_cast<std::size_t>(same) : 0);
        for (std::size_t size = mOld.size() - 40; size <= last; size += last / 150)
        {
            SCOPED_TRACE(size);
            putBack();
            {
                const FullDisk disk(size);
                EXPECT_FALSE(write() && changed > size);
            }
            EXPECT_EQ(mFile->bytes(), mErrors.empty() ? mNew : mOld) << mErrors;
            EXPECT_FALSE(mFile->hasRecord());
        }
    });
}

TEST_F(InterruptedWriteTest, WhatCannotBePutBack_StaysInTheRecord)
{
    const std::string damaged = "\nThe old bytes could not be put back: ";
    forAll([&](const Kind&) {
        int damages = 0;
        Script script;
        for (int turn = 1; turn == 1 || (script.hadItsTurn() && !HasFailure()); ++turn)
        {
            SCOPED_TRACE("the disk fails from call " + std::to_string(turn) + " on");
            putBack();
            script = Script();
            script.mTurn = turn;
            script.mAction = Script::kFailForGood;
            script.mError = EIO;
            const bool isWritten = write(script);
            EXPECT_EQ(isWritten, !script.hadItsTurn());
            EXPECT_TRUE(mFile->hasRecord() || mFile->bytes() == mOld || mFile->bytes() == mNew);
            damages += mErrors.find(damaged + mFile->name() + " may be damaged until " + mFile->recordName()) !=
                       std::string::npos;
            expectOldOrNewAfterRead();
        }
        EXPECT_GE(damages, 3);

        putBack();
        mAccessor->setDurability(Accessor::kMemoryOnly);
        script = Script();
        script.mTurn = 2;
        script.mAction = Script::kFailForGood;
        const bool isWritten = write(script);
        EXPECT_EQ(isWritten, !script.hadItsTurn());
        if (script.hadItsTurn() && mFile->bytes() != mOld)
        {
            EXPECT_THAT(mErrors, testing::EndsWith(damaged + mFile->name() + " may be damaged.\n"));
        }
    });
}
} // namespace
} // namespace vumo::test
