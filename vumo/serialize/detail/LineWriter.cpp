#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/foundation/detail/Quoted.h"
#include "vumo/foundation/detail/StringOutput.h"

#include <sstream>
#include <typeinfo>

namespace vumo::Data::detail
{
namespace
{
/// Says whether nobody sees when a line arrives: there is nothing to flush, and no code of others to be called.
bool isUnwatched(const std::ostream& out)
{
    const std::streambuf* const buffer = out.rdbuf();
    return buffer && typeid(*buffer) == typeid(StringBuffer) && !out.tie();
}
/// Says whether a flush can do anything: not where the text goes into a string. It takes as long as half of a number.
bool canFlush(const std::ostream& out)
{
    const std::streambuf* const buffer = out.rdbuf();
    return !buffer || (typeid(*buffer) != typeid(std::stringbuf) && typeid(*buffer) != typeid(StringBuffer));
}
} // namespace

LineWriter::LineWriter(std::ostream& out, Messages& messages, const LineOwner& owner, eUse use)
    : mOut(out),
      mMessages(messages),
      mOwner(owner),
      mGathers(use == kAlone && isUnwatched(out)),
      mCanFlush(canFlush(out))
{
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
    constexpr std::size_t kPiece = 4096;
    mLine.append('\n');
    ++mRecord;
    mBegin = mLine.text().size();
    if (!mGathers || mBegin >= kPiece)
        finish();
}

void LineWriter::finish()
{
    if (mLine.empty())
        return;
    mOut.write(mLine.text().data(), static_cast<std::streamsize>(mLine.text().size()));
    if (mCanFlush)
        mOut.flush(); // whoever reads along gets whole lines
    mLine.clear();
    mBegin = 0;
}

void LineWriter::refuse(const std::string& subject, const std::string& fault)
{
    mMessages.add(notReadBackMessage(subject, mRecord, mOwner, fault));
}
} // namespace vumo::Data::detail
