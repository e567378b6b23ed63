#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace vumo::Data::detail
{
/// Writers count an error for what the reader of the same format would not give back as it was. These say what is
/// wrong, and where.

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

/// Those of the names that come more than once: of streams or channels of one name the last would be read back. A set
/// that is ordered by name holds such when its entries were renamed through another object that shares them.
std::set<std::string_view> repeatedNames(std::vector<std::string_view> names);
} // namespace vumo::Data::detail
