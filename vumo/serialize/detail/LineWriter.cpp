#include "vumo/serialize/detail/LineWriter.h"

#include "vumo/foundation/detail/Quoted.h"
#include "vumo/foundation/detail/StringOutput.h"

#include <sstream>
#include <typeinfo>

namespace vumo::Data::detail
{
namespace
{
template <class Buffer>
bool writesTo(const std::ostream& out)
{
    const std::streambuf* const buffer = out.rdbuf();
    return buffer && typeid(*buffer) == typeid(Buffer);
}

/// Says whether nobody sees when a line arrives: the text goes into a string, and no code of others is called. There a
/// flush would do nothing, and take as long as half of a number.
bool isUnwatched(const std::ostream& out)
{
    return !out.tie() && (writesTo<StringBuffer>(out) || writesTo<std::stringbuf>(out));
}
} // namespace

LineWriter::LineWriter(std::ostream& out, Messages& messages, const LineOwner& owner, eUse use)
    : mOut(out),
      mMessages(messages),
      mOwner(owner),
      mIsUnwatched(isUnwatched(out)),
      mGathers(use == kAlone && mIsUnwatched && writesTo<StringBuffer>(out))
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
    startLine();
    if (!mGathers || mBegin >= kPiece)
        finish();
}

void LineWriter::endFirstOfTwo()
{
    startLine();
    if (!mIsUnwatched)
        finish();
}

void LineWriter::startLine()
{
    mLine.append('\n');
    ++mRecord;
    mBegin = mLine.text().size();
}

void LineWriter::finish()
{
    if (mLine.empty())
        return;
    mOut.write(mLine.text().data(), static_cast<std::streamsize>(mLine.text().size()));
    if (!mIsUnwatched)
        mOut.flush(); // whoever reads along gets whole lines
    mLine.clear();
    mBegin = 0;
}

void LineWriter::refuse(const std::string& subject, const std::string& fault)
{
    mMessages.add(notReadBackMessage(subject, mRecord, mOwner, fault));
}
} // namespace vumo::Data::detail
