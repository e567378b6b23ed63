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
/// Writes an output line by line, each with its newline and flushed. Where nobody can see that, because the output is
/// exactly one of the library's own on a string, lines may be gathered until finish() is called.
///
/// Writes everything, but counts an error for what a `LineReader` would not give back as it was: the reader of
/// a whole file stumbles over one such line.
class LineWriter
{
public:
    /// Who writes to the output while the writer lives. A channel's writer shares it with the writers of the streams.
    enum eUse
    {
        kShared,
        kAlone
    };

    /// Borrows the output and the messages, to which errors go.
    LineWriter(std::ostream& out, Messages& messages, const LineOwner& owner = {}, eUse use = kShared);

    void write(std::string_view line);

    /// Writes the keyword, a blank and the name, which messages call by what it is: "Stream name", say.
    void writeName(const char* keyword, const char* what, const std::string& name);

    /// To build a line in place, at the end of the text; endLine() writes it, however long it is.
    TextBuilder& line() { return mLine; }
    bool isTooLong() const { return mLine.text().size() - mBegin > kMaxLineLength; }
    void endLine();

    /// The same for a line that another one follows before any code of others runs: on a string both may be written
    /// at once.
    void endFirstOfTwo();

    /// Writes what was gathered.
    void finish();

    /// The number of the line to be written next, counted from 1.
    unsigned int record() const { return mRecord; }

    const LineOwner& owner() const { return mOwner; }

    /// Counts the error that `subject`, which is on the next line, would not be read back.
    void refuse(const std::string& subject, const std::string& fault);

private:
    void startLine();

    std::ostream& mOut;
    Messages& mMessages;
    LineOwner mOwner;
    const bool mIsUnwatched;
    const bool mGathers;
    TextBuilder mLine;      // after those that were gathered
    std::size_t mBegin = 0; // of the line
    unsigned int mRecord = 1;
};
} // namespace vumo::Data::detail
