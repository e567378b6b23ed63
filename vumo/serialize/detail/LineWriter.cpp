#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/serialize/SerializerRaw.h"
#include "vumo/serialize/detail/LineReader.h"

namespace vumo::Data::detail
{
void LineWriter::write(const std::string& line)
{
    if (line.size() > kMaxLineLength)
    {
        mMessages.add("Line at record " + std::to_string(mRecord) + " is longer than " +
                      std::to_string(kMaxLineLength) + " characters and cannot be read back");
    }
    mOut.write(line.data(), static_cast<std::streamsize>(line.size()));
    mOut.put('\n');
    mOut.flush();
    ++mRecord;
}

void LineWriter::write(const char* keyword, const std::string& name)
{
    check(name);
    write(std::string(keyword) + " " + name);
}

void LineWriter::check(const std::string& text)
{
    std::string trimmed = text;
    if (SerializerRaw::collapseWhitespace(trimmed) != text || text.find('\n') != std::string::npos)
        refuse(text);
}

void LineWriter::refuse(const std::string& text)
{
    mMessages.add("Text '" + text + "' at record " + std::to_string(mRecord) + " cannot be read back");
}
} // namespace vumo::Data::detail
