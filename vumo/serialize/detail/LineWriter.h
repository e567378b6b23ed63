#pragma once

#include "vumo/foundation/detail/TextBuilder.h"
#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/Messages.h"
#include "vumo/serialize/detail/ReadBack.h"

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
    /// Borrows all three; errors go to `messages`.
    LineWriter(std::ostream& out, Messages& messages, const LineOwner& owner = {})
        : mOut(out),
          mMessages(messages),
          mOwner(owner)
    {
    }

    void write(std::string_view line);

    /// Writes the keyword, a blank and the name, which messages call by what it is: "Stream name", say.
    void writeName(const char* keyword, const char* what, const std::string& name);

    /// To build a line in place, from empty; endLine() writes it, however long it is.
    TextBuilder& line() { return mLine; }
    bool isTooLong() const { return mLine.text().size() > kMaxLineLength; }
    void endLine();

    /// The number of the line to be written next, counted from 1.
    unsigned int record() const { return mRecord; }

    const LineOwner& owner() const { return mOwner; }

    /// Counts the error that `subject`, which is on the next line, would not be read back.
    void refuse(const std::string& subject, const std::string& fault);

private:
    std::ostream& mOut;
    Messages& mMessages;
    LineOwner mOwner;
    TextBuilder mLine;
    unsigned int mRecord = 1;
};
} // namespace vumo::Data::detail
