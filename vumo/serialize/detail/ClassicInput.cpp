#include "vumo/serialize/detail/ClassicInput.h"

#include <locale>

namespace vumo::Data::detail
{
ClassicInput::ClassicInput(std::istream& in) : mIn(in), mStream(in.rdbuf())
{
    mStream.imbue(std::locale::classic());
    mStream.setstate(in.rdstate());
}
} // namespace vumo::Data::detail
