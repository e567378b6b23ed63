#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <istream>

namespace vumo::detail
{
/// Reads from the buffer of an input as if its locale were the classic one, and hands on to that input whether
/// reading failed or met the end.
class ClassicInput
{
public:
    explicit ClassicInput(std::istream& in);
    ClassicInput(const ClassicInput&) = delete;
    ClassicInput& operator=(const ClassicInput&) = delete;

    std::istream& stream() { return mStream; }

    /// To be called at the end of a reading.
    void handOnState() { mIn.setstate(mStream.rdstate()); }

private:
    std::istream& mIn;
    std::istream mStream;
};

/// The position of the next character to be read, counted from 0, also when the last read failed or met
/// the end; -1 where the input cannot tell.
long long readPosition(std::istream& in);
} // namespace vumo::detail
