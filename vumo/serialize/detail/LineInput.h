#pragma once

#include "vumo/foundation/detail/ValueInput.h"
#include "vumo/serialize/detail/LineReader.h"

#include <istream>

namespace vumo::Data::detail
{
/// An input of its own on the current line of a reader, in the classic locale. It tells its positions as
/// positions in the reader's input, so that a message leads to the place in the file.
class LineInput
{
public:
    /// Borrows the reader.
    explicit LineInput(const LineReader& lines);

    /// An input at the start of the reader's current line; valid until that reads the next one.
    ValueInput& restart();

private:
    class Buffer : public TextBuffer
    {
    public:
        explicit Buffer(const LineReader& lines) : mLines(lines) {}

    protected:
        long long start() const override { return mLines.position(); }

    private:
        const LineReader& mLines;
    };

    const LineReader& mLines;
    Buffer mBuffer;
    std::istream mStream;
    ValueInput mValues;
};
} // namespace vumo::Data::detail
