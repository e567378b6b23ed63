#include "vumo/serialize/detail/ClassicText.h"

#include <locale>

namespace vumo::Data::detail
{
namespace
{
constexpr std::ios::fmtflags kFloatFormat = std::ios::floatfield | std::ios::showpoint | std::ios::uppercase;
} // namespace

ClassicText::ClassicText(const std::ostream& receiver)
{
    mStream.imbue(std::locale::classic());
    mStream.precision(receiver.precision());
    mStream.setf(receiver.flags(), kFloatFormat);
    mStream.exceptions(std::ios::badbit); // or a lack of memory would end the text early, and nobody would know
}

bool ClassicText::hasHexFloats(const std::ostream& out)
{
    return (out.flags() & std::ios::floatfield) == (std::ios::fixed | std::ios::scientific);
}

std::string ClassicText::take()
{
    std::string text = mStream.str();
    mStream.str(std::string());
    return text;
}

ClassicInput::ClassicInput(std::istream& in) : mIn(in), mStream(in.rdbuf())
{
    mStream.imbue(std::locale::classic());
    mStream.setstate(in.rdstate());
}
} // namespace vumo::Data::detail
