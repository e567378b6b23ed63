#pragma once

#include "vumo/data/Index.h"
#include "vumo/data/Stream.h"
#include "vumo/data/StreamImplMapped.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/detail/ElementText.h"
#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/Messages.h"

#include <istream>
#include <memory>
#include <optional>
#include <string>

namespace vumo::Data::detail
{
/// Reads one stream in the raw format. Goes on after an error, to find the others as well.
class StreamReader
{
public:
    /// Borrows the input.
    explicit StreamReader(std::istream& in) : mLines(in, LineReader::kAlone) {}

    /// Owned by the caller; null after any error, with all of them appended to `errors`.
    std::unique_ptr<Stream> read(std::string& errors);

private:
    bool readHeaderLine();
    void acceptName(const std::string& name);
    void acceptIndexType(const std::string& name);
    void acceptStructure(const std::string& name);

    /// The current line is an index line. False when the stream ends in place of the data line.
    bool readIndexAndData();
    std::optional<Index> parseIndex();
    Index createIndex();
    void refuseIndex(Index::eCreationErrors code);
    void readDataLine(Index&& index);

    void requireHeader();
    StreamImplMapped& storage();

    bool isLastLine() const;

    /// False, with an error, for a line that is too long.
    bool isLineUsable();
    std::string atRecord() const { return atRecord(mLines.record()); }
    static std::string atRecord(unsigned int record);

    LineReader mLines;
    ValueInput mValues; // of the current line
    Messages mMessages;

    std::string mName;
    std::string mIndexType = Index::theTypeName();
    const Structure* mStructure = nullptr; // registered, or null when it is not known
    bool mHasName = false;
    bool mHasStructure = false;
    bool mHasUsableIndexType = true;
    bool mHasIndexLine = false;

    Index::Creator mIndexCreator = nullptr; // null: not yet looked up
    std::string mIndexText;                 // of the current element
    std::unique_ptr<ElementText> mElementText;
    Ref<StreamImplMapped> mStorage; // null: no element was made, so header lines may follow
};
} // namespace vumo::Data::detail
