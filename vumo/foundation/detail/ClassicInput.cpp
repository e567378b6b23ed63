#include "vumo/foundation/detail/ClassicInput.h"

#include <locale>

namespace vumo::Data::detail
{
ClassicInput::ClassicInput(std::istream& in) : mIn(in), mStream(nullptr)
{
    mStream.imbue(std::locale::classic()); // while there is no buffer, which would be imbued as well
    mStream.rdbuf(in.rdbuf());
    mStream.setstate(in.rdstate());
}
} // namespace vumo::Data::detail
