#pragma once

#include <istream>
#include <string_view>

namespace vumo::Data::detail
{
/// Gives out the lines that lie in the buffer of an input, without copying them.
///
/// The input is asked for them late: it still stands before them until release() is called, which leaves it as if
/// they had been read one by one. Until then nobody else may use it.
class LineWindow
{
public:
    /// Borrows the input.
    explicit LineWindow(std::istream& in) : mIn(in) {}
    LineWindow(const LineWindow&) = delete;
    LineWindow& operator=(const LineWindow&) = delete;
    ~LineWindow() { release(); }

    /// Gives the next line, without its newline, if it is at hand and not longer than `limit`. Otherwise everything is
    /// released, and the input has to be read in the usual way. A line stays valid until the input is used.
    bool next(std::string_view& line, std::string_view::size_type limit);

    /// Takes from the input what was given out, and nothing after it.
    void release();

private:
    void open();

    std::istream& mIn;
    std::string_view mAhead;    // not yet given out
    std::streamsize mGiven = 0; // characters given out, but not yet taken from the input
    std::streamsize mLast = 0;  // those of the last line
};
} // namespace vumo::Data::detail
