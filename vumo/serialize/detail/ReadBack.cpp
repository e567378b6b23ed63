#include "vumo/serialize/detail/ReadBack.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/serialize/detail/LineReader.h"

#include <algorithm>

namespace vumo::Data::detail
{
std::string LineOwner::text() const
{
    std::string result;
    if (stream)
        result += " of stream " + quoted(*stream);
    if (channel)
        result += (stream ? " in channel " : " of channel ") + quoted(*channel);
    return result;
}

const char* nameFault(std::string_view text)
{
    for (const char character : text) // most are short
    {
        if (character == '\0')
            return "it has a zero byte";
        if (character == '\n')
            return "it has a line break";
    }
    return trimmed(text).size() != text.size() ? "it has whitespace at an end" : nullptr;
}

std::string tooLongFault()
{
    return "its line is longer than " + std::to_string(kMaxLineLength) + " characters";
}

std::string notReadBackMessage(const std::string& subject, unsigned int record, const LineOwner& owner,
                               const std::string& fault)
{
    return subject + " at record " + std::to_string(record) + owner.text() + " cannot be read back: " + fault;
}

std::set<std::string_view> repeatedNames(std::vector<std::string_view> names)
{
    // Nearly all are sorted, as their set is; a repeated name then stands beside its like without more.
    if (!std::is_sorted(names.begin(), names.end()))
        std::sort(names.begin(), names.end());
    std::set<std::string_view> repeated;
    const auto end = names.end();
    for (auto name = std::adjacent_find(names.begin(), end); name != end; name = std::adjacent_find(name + 1, end))
        repeated.insert(*name);
    return repeated;
}
} // namespace vumo::Data::detail
