#pragma once

#include "vumo/data/detail/TextBuilder.h"
#include "vumo/serialize/detail/Messages.h"

#include <ostream>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// Writes an output line by line, each with its newline and flushed.
///
/// Writes everything, but counts an error for what a `LineReader` would not give back as it was: the reader of
/// a whole file stumbles over one such line.
class LineWriter
{
public:
    /// Borrows both; errors go to `messages`.
    LineWriter(std::ostream& out, Messages& messages) : mOut(out), mMessages(messages) {}

    void write(std::string_view line);

    /// Writes the keyword, a blank and the name.
    void write(const char* keyword, const std::string& name);

    /// To build a line in place, from empty; endLine() writes it.
    TextBuilder& line() { return mLine; }
    void endLine();

    /// The number of the line to be written next, counted from 1.
    unsigned int record() const { return mRecord; }

    /// Counts the error when the text, alone on the next line or behind a keyword, would not be read back.
    void check(const std::string& text);
    void refuse(const std::string& text);

private:
    std::ostream& mOut;
    Messages& mMessages;
    TextBuilder mLine;
    unsigned int mRecord = 1;
};
} // namespace vumo::Data::detail
