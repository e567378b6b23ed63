#include "vumo/serialize/detail/LineInput.h"

#include <locale>

namespace vumo::Data::detail
{
LineInput::LineInput(const LineReader& lines)
    : mLines(lines),
      mBuffer(lines),
      mStream(&mBuffer),
      mValues(mStream, mBuffer)
{
    mStream.imbue(std::locale::classic());
}

ValueInput& LineInput::restart()
{
    mBuffer.restart(mLines.text());
    mStream.clear();
    return mValues;
}
} // namespace vumo::Data::detail
