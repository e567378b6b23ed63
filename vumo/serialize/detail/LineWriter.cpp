#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/serialize/detail/LineReader.h"
#include "vumo/serialize/detail/Trim.h"

namespace vumo::Data::detail
{
void LineWriter::write(std::string_view line)
{
    mLine.append(line);
    endLine();
}

void LineWriter::write(const char* keyword, const std::string& name)
{
    check(name);
    write(std::string(keyword) + " " + name);
}

void LineWriter::endLine()
{
    if (mLine.text().size() > kMaxLineLength)
    {
        mMessages.add("Line at record " + std::to_string(mRecord) + " is longer than " +
                      std::to_string(kMaxLineLength) + " characters and cannot be read back");
    }
    mLine.append('\n');
    mOut.write(mLine.text().data(), static_cast<std::streamsize>(mLine.text().size()));
    mOut.flush();
    mLine.clear();
    ++mRecord;
}

void LineWriter::check(const std::string& text)
{
    if (trimmed(text) != text || text.find('\n') != std::string::npos)
        refuse(text);
}

void LineWriter::refuse(const std::string& text)
{
    mMessages.add("Text '" + text + "' at record " + std::to_string(mRecord) + " cannot be read back");
}
} // namespace vumo::Data::detail
