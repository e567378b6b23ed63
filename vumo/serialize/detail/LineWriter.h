#pragma once

#include "vumo/foundation/detail/TextBuilder.h"
#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/Messages.h"

#include <ostream>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// What lines belong to. Borrows the names, which are put together only where there is something to report.
struct LineOwner
{
    const std::string* stream = nullptr;  // null: lines of the channel itself, or of none
    const std::string* channel = nullptr; // null: none is known

    /// " of stream 'a' in channel 'b'", or as much of it as is known.
    std::string text() const;
};

/// Why the text, as a name or an index, would not be read back as it was; null when it would.
const char* nameFault(std::string_view text);

/// Says that a line is too long to be read back.
std::string tooLongFault();

/// Says that something in a text would not be read back as it was.
std::string notReadBackMessage(const std::string& subject, unsigned int record, const LineOwner& owner,
                               const std::string& fault);

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
