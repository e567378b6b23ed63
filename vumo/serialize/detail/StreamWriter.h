#pragma once

#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"
#include "vumo/foundation/detail/NumberFormat.h"
#include "vumo/serialize/detail/ElementText.h"
#include "vumo/serialize/detail/LineWriter.h"
#include "vumo/serialize/detail/Messages.h"

#include <optional>
#include <ostream>
#include <string>

namespace vumo::Data::detail
{
/// Writes one stream in the raw format.
///
/// Whatever there is gets written. What a `StreamReader` would not give back as it was is an error whose message
/// leads to it.
class StreamWriter
{
public:
    /// Borrows all. `channel` is the name of the channel that holds the stream, for messages.
    StreamWriter(const Stream& stream, std::ostream& out, const std::string* channel = nullptr);

    /// Returns the number of errors, which are appended to `errors` with their summary.
    int write(std::string& errors);

private:
    void writeHeader();
    void writeElements();
    void writeIndex(Index& index);
    std::string indexFault(Index& index, const std::string& text) const;
    bool isRecreated(Index& index, const std::string& text) const;
    void writeData(const Index& index, char* block);
    void reportData(const Index& index, char* block);

    const Stream& mStream;
    std::ostream& mOut;
    Messages mMessages;
    LineWriter mLines;
    const NumberFormat mFormat;
    std::optional<ElementText> mElements; // none before the first element
    bool mIsFirst = true;                 // no index was written yet
};
} // namespace vumo::Data::detail
