#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/foundation/detail/Quoted.h"

namespace vumo::Data::detail
{
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
    mOut.flush(); // whoever reads along gets whole lines
    mLine.clear();
    ++mRecord;
}

void LineWriter::refuse(const std::string& subject, const std::string& fault)
{
    mMessages.add(notReadBackMessage(subject, mRecord, mOwner, fault));
}
} // namespace vumo::Data::detail
