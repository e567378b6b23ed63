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
    mStream.exceptions(std::ios::badbit); // lines do not break: this is a lack of memory, which is to be thrown
}

ValueInput& LineInput::restart()
{
    mValues.restart(mLines.text());
    return mValues;
}
} // namespace vumo::Data::detail
