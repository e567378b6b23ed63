#pragma once

#include <istream>
#include <ostream>
#include <sstream>
#include <string>

namespace vumo::Data::detail
{
/// Builds text whose numbers do not depend on any locale, as exact as the stream that will receive it asks.
class ClassicText
{
public:
    /// Takes over the precision and the float format of `receiver`, nothing else.
    explicit ClassicText(const std::ostream& receiver);

    std::ostream& stream() { return mStream; }

    /// Says whether numbers are written as hexadecimal floats, which no reader takes back.
    static bool hasHexFloats(const std::ostream& out);

    /// The text since the last call.
    std::string take();

private:
    std::ostringstream mStream;
};

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
} // namespace vumo::Data::detail
