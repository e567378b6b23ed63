#include "vumo/serialize/detail/LineInput.h"

#include <locale>

namespace vumo::Data::detail
{
LineInput::LineInput(const LineReader& lines) : mBuffer(lines), mStream(&mBuffer)
{
    mStream.imbue(std::locale::classic());
}

std::istream& LineInput::restart()
{
    mBuffer.restart();
    mStream.clear();
    return mStream;
}

void LineInput::Buffer::restart()
{
    mText = mLines.text();
    setg(mText.data(), mText.data(), mText.data() + mText.size());
}

LineInput::Buffer::pos_type LineInput::Buffer::seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode)
{
    const long long start = mLines.position();
    if (offset != 0 || way != std::ios::cur || start < 0)
        return pos_type(off_type(-1));
    return pos_type(off_type(start + (gptr() - eback())));
}
} // namespace vumo::Data::detail
