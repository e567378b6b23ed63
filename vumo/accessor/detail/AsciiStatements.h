#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// A metadata statement of an ASCII scene file: its command at the start of a line, to the line that ends in ";".
struct AsciiStatement
{
    enum eCommand
    {
        kDataStructure,
        kApplyMetadata
    };

    eCommand command = kDataStructure;
    std::streamoff begin = 0;
    std::streamoff end = 0;  ///< after its ";"; as `begin` when the statement has no end
    std::streamoff next = 0; ///< of the line that follows

    bool isComplete() const { return end > begin; }
};

/// What stands at the end of an ASCII scene file, below its last host statement.
struct AsciiTail
{
    std::vector<AsciiStatement> statements; ///< from the last in the file to the first
    std::streamoff trailer = -1;            ///< of the last line that starts with the trailer's prefix; -1: none
    std::streamoff size = 0;                ///< of the file

    /// Sets the size. False when the file cannot be measured.
    bool measure(std::istream& file);
};

/// Takes a statement and its text as it stands in the file, from `begin` to `end`, which is not valid for longer.
using AsciiStatementTaker = std::function<void(const AsciiStatement& statement, std::string_view text)>;

/// Searches a file of the measured size backwards for metadata statements, up to the first host statement. Reads of the
/// scene no more than that takes, and holds none of it. Hands each statement on, unless `take` is empty, from the last
/// in the file to the first. False, with `error` set, when the file could not be read.
bool findAsciiTail(std::istream& in, AsciiTail& tail, const AsciiStatementTaker& take, std::string& error);
} // namespace vumo::Data::detail
