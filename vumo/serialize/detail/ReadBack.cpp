#include "vumo/serialize/detail/ReadBack.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/serialize/detail/LineReader.h"

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
} // namespace vumo::Data::detail
