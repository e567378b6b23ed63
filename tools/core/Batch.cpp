#include "core/Batch.h"

#include "core/Progress.h"
#include "core/Text.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <thread>

namespace
{
/// What came of the work with one file.
struct Outcome
{
    eExitCode code = kDone;
    std::string data;  // unless it was written at once
    std::string words; // what went wrong
};

/// The work on a batch, shared by the threads that do it.
class Work
{
public:
    Work(Session& session, const Batch& batch, const FileWork& work)
        : mSession(session),
          mBatch(batch),
          mWork(work),
          mProgress(!session.isQuiet())
    {
    }

    eExitCode run()
    {
        std::vector<std::thread> helpers;
        for (std::size_t i = 1; i < std::min<std::size_t>(mBatch.jobs, mBatch.files.size()); ++i)
            helpers.emplace_back([this] { workOff(); });
        workOff();
        for (std::thread& helper : helpers)
            helper.join();
        mProgress.hide();
        if (mError)
            std::rethrow_exception(mError);
        return finish();
    }

private:
    /// What one thread does: takes a file, works on it and delivers, until no file is left.
    void workOff()
    {
        try
        {
            for (std::size_t i = take(); i < mBatch.files.size(); i = take())
                deliver(i, workOn(mBatch.files[i]));
        }
        catch (...)
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mError = std::current_exception();
            mNext = mBatch.files.size();
        }
    }

    std::size_t take()
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        return mNext < mBatch.files.size() ? mNext++ : mNext;
    }

    Outcome workOn(const std::string& file)
    {
        Outcome outcome;
        std::ostringstream kept;
        // One thread alone needs not keep what it finds until its turn comes.
        std::ostream& out = mBatch.jobs == 1 && !mSession.isJson() ? mSession.out() : kept;
        LeadingWords leading(out, printable(file) + "\t", mSession.lineEnd());
        std::ostream led(&leading);
        JsonObject json;
        json.addText("file", file);
        Job job{mSession, file, mBatch.isSeveral && mBatch.areLinesLed ? led : out,
                mSession.isJson() ? &json : nullptr};
        tryWork(job, outcome);
        if (mSession.isJson())
        {
            if (!outcome.words.empty())
                json.addText("error", outcome.words);
            kept << json.add("code", std::to_string(outcome.code)).text();
        }
        outcome.data = kept.str();
        return outcome;
    }

    void tryWork(Job& job, Outcome& outcome)
    {
        try
        {
            outcome.code = mWork(job);
        }
        catch (const Failure& failure)
        {
            if (failure.code() == kWrongUsage && !dynamic_cast<const WrongForFile*>(&failure))
                throw;
            outcome.code = failure.code();
            outcome.words = failure.what();
        }
        catch (const std::exception& error)
        {
            outcome.code = kBadInput;
            outcome.words = job.file + ": " + error.what();
        }
    }

    /// Writes what came of a file, and of those after it that are done already, once it is their turn.
    void deliver(std::size_t i, Outcome outcome)
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mDone.emplace(i, std::move(outcome));
        for (auto next = mDone.begin(); next != mDone.end() && next->first == mDelivered; next = mDone.erase(next))
            write(mBatch.files[mDelivered++], next->second);
        mProgress.show(mDelivered, mBatch.files.size());
    }

    void write(const std::string& file, const Outcome& outcome)
    {
        mProgress.hide();
        if (mSession.isJson())
            mSession.out() << (mDelivered == 1 ? "[\n" : ",\n");
        mSession.out() << outcome.data;
        mSession.flushForPeople();
        mSession.say(outcome.words);
        if (outcome.code > kNo)
            mFailed.push_back(file);
        if (outcome.code > kNo || mCode == kDone)
            mCode = outcome.code;
        if ((outcome.code > kNo && mSession.isFailFast()) || !mSession.hasReader())
            mNext = mBatch.files.size();
    }

    eExitCode finish()
    {
        if (mSession.isJson())
            mSession.out() << (mDelivered == 0 ? "[]\n" : "\n]\n");
        if (mFailed.empty() || !mBatch.isSeveral)
            return mCode;
        mSession.say(std::to_string(mFailed.size()) + " of " + std::to_string(mBatch.files.size()) + " files failed:");
        tellNames(mFailed.begin(), mFailed.end());
        if (mDelivered < mBatch.files.size() && mSession.hasReader())
            mSession.say("not tried:");
        tellNames(mBatch.files.begin() + static_cast<std::ptrdiff_t>(mDelivered), mBatch.files.end());
        return kSomeFailed;
    }

    /// In the form that --files-from reads.
    template <class Iterator>
    void tellNames(Iterator name, Iterator end) const
    {
        for (; name != end; ++name)
            std::cerr << *name << (mSession.endsWithZero() ? '\0' : '\n');
    }

    Session& mSession;
    const Batch& mBatch;
    const FileWork& mWork;
    Progress mProgress;

    std::mutex mMutex; // of all that follows, and of the output
    std::size_t mNext = 0;
    std::size_t mDelivered = 0;
    std::map<std::size_t, Outcome> mDone; // by the file's number; waits for its turn
    std::vector<std::string> mFailed;
    eExitCode mCode = kDone;
    std::exception_ptr mError;
};
} // namespace

eExitCode forEachFile(Session& session, const Batch& batch, const FileWork& work)
{
    return Work(session, batch, work).run();
}

eExitCode once(Session& session, const FileWork& work)
{
    JsonObject json;
    Job job{session, "", session.out(), session.isJson() ? &json : nullptr};
    eExitCode code = kDone;
    try
    {
        code = work(job);
    }
    catch (const Failure& failure)
    {
        if (failure.code() == kWrongUsage)
            throw;
        code = failure.code();
        session.flushForPeople();
        session.say(failure.what());
        json.addText("error", failure.what());
    }
    if (session.isJson())
        session.out() << json.add("code", std::to_string(code)).text() << '\n';
    return code;
}

Batch batchOf(const Session& session)
{
    Batch batch;
    batch.files = session.files();
    batch.isSeveral = session.isBatch();
    return batch;
}

eExitCode forEachFile(Session& session, const FileWork& work)
{
    return forEachFile(session, batchOf(session), work);
}
