#pragma once

#include <csignal>

namespace vumo::Data::detail
{
/// Holds back the signals that end programs from this thread while it lives: one that comes meanwhile takes effect when
/// the object goes. A change of a file is over in milliseconds, and a process that ends in its middle leaves a file
/// that only its undo record completes, or nothing where there can be no record.
///
/// The signal for a file that grows over its limit (SIGXFSZ) is dropped: the call that grew it fails, and is told of.
class SignalHold
{
public:
    SignalHold();
    SignalHold(const SignalHold&) = delete;
    SignalHold& operator=(const SignalHold&) = delete;
    ~SignalHold();

private:
    sigset_t mBefore;
    bool mHadLimit; ///< was a SIGXFSZ waiting already?
};
} // namespace vumo::Data::detail
