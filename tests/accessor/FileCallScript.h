#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

namespace vumo::test
{
/// Stands between the library and the system's calls on files, in this program: counts them, notes what they do, and
/// ends the process or lets a call fail when its turn comes.
struct FileCallScript
{
    enum eCalls
    {
        kChanges, ///< all that can change a file or a directory
        kSeeks,
        kReads,
        kOpens ///< of what is there
    };

    enum eAction
    {
        kPass,
        kExit,        ///< before the call
        kExitHalfway, ///< a write has written half of its bytes
        kFail,        ///< with mError
        kFailForGood, ///< this call and all that follow
        kFailHalfway, ///< a write writes half of its bytes, the call that completes it fails
        kShorten,     ///< a write writes half of its bytes
        kInterrupt    ///< by a signal, once
    };

    static constexpr int kExitCode = 77;

    eCalls mCalls = kChanges;
    std::string mPlace; // where calls count, as "write scene"; empty: everywhere
    int mTurn = 0;      // counted from 1; 0: never
    eAction mAction = kPass;
    int mError = 0;
    std::function<void()> mMeanwhile; // what somebody else does before the call; none when empty
    int mExitLater = 0;               // how many calls after its turn the process ends; 0: it does not

    int mCount = 0;
    std::vector<std::string> mLog; // what was done, and to which kind of file; repetitions once

    /// What happens at a turn of the calls that count at a place, or of the calls of one kind.
    static FileCallScript at(const char* place, int turn, eAction action, int error = 0)
    {
        FileCallScript script;
        script.mPlace = place;
        script.mTurn = turn;
        script.mAction = action;
        script.mError = error;
        return script;
    }
    static FileCallScript at(eCalls calls, int turn, eAction action, int error = 0)
    {
        FileCallScript script = at("", turn, action, error);
        script.mCalls = calls;
        return script;
    }

    /// The script in force; none when null.
    static FileCallScript*& current()
    {
        static FileCallScript* theScript = nullptr;
        return theScript;
    }

    bool hadItsTurn() const { return mTurn > 0 && mCount >= mTurn; }

    /// A file by its name or, where that is null, by its descriptor.
    struct Target
    {
        const char* mPath;
        int mDescriptor;
    };

    /// Says what to do with a call; `isWrite` for one that may be done by half.
    static eAction next(eCalls calls, const char* what, const Target& target, bool isWrite = false);

    /// Puts a script in force while it lives.
    class Use
    {
    public:
        explicit Use(FileCallScript& script) { current() = &script; }
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() { current() = nullptr; }
    };
};

/// Runs the action in a process of its own; says whether the script ended that.
template <class Action>
bool isEndedBy(FileCallScript script, const Action& action)
{
    const pid_t child = fork();
    if (child == 0)
    {
        const FileCallScript::Use use(script);
        _exit(action() ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    EXPECT_TRUE(code == FileCallScript::kExitCode || code == 0) << code;
    return code == FileCallScript::kExitCode;
}
} // namespace vumo::test
