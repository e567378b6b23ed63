#include "vumo/serialize/detail/LineInput.h"

#include <locale>

namespace vumo::Data::detail
{
LineInput::LineInput(LineReader& lines) : mLines(lines), mBuffer(lines), mStream(&mBuffer), mValues(mStream, mBuffer)
{
    mStream.imbue(std::locale::classic());
}

ValueInput& LineInput::restart()
{
    mValues.restart(mLines.text());
    return mValues;
}
} // namespace vumo::Data::detail
