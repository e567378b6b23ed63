#pragma once

#include "vumo/serialize/detail/LineReader.h"

#include <istream>
#include <streambuf>
#include <string>

namespace vumo::Data::detail
{
/// An input of its own on the current line of a reader, in the classic locale. It tells its positions as
/// positions in the reader's input, so that a message leads to the place in the file.
class LineInput
{
public:
    /// Borrows the reader.
    explicit LineInput(const LineReader& lines);

    /// An input at the start of the reader's current line.
    std::istream& restart();

private:
    class Buffer : public std::streambuf
    {
    public:
        explicit Buffer(const LineReader& lines) : mLines(lines) {}
        void restart();

    protected:
        /// Tells the position; moves nowhere.
        pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode which) override;

    private:
        const LineReader& mLines;
        std::string mText;
    };

    Buffer mBuffer;
    std::istream mStream;
};
} // namespace vumo::Data::detail
