#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/Quoted.h"

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

void LineWriter::write(std::string_view line)
{
    mLine.append(line);
    endLine();
}

void LineWriter::writeName(const char* keyword, const char* what, const std::string& name)
{
    mLine.append(keyword);
    mLine.append(' ');
    mLine.append(name);
    const char* const fault = nameFault(name);
    if (fault || isTooLong())
        refuse(what + (" " + quoted(name)), fault ? fault : tooLongFault());
    endLine();
}

void LineWriter::endLine()
{
    mLine.append('\n');
    mOut.write(mLine.text().data(), static_cast<std::streamsize>(mLine.text().size()));
    mOut.flush();
    mLine.clear();
    ++mRecord;
}

void LineWriter::refuse(const std::string& subject, const std::string& fault)
{
    mMessages.add(notReadBackMessage(subject, mRecord, mOwner, fault));
}
} // namespace vumo::Data::detail
