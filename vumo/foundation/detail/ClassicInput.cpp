#include "vumo/foundation/detail/ClassicInput.h"

#include <locale>

namespace vumo::detail
{
ClassicInput::ClassicInput(std::istream& in) : mIn(in), mStream(nullptr)
{
    mStream.imbue(std::locale::classic()); // while there is no buffer, which would be imbued as well
    mStream.rdbuf(in.rdbuf());
    mStream.setstate(in.rdstate());
}

long long readPosition(std::istream& in)
{
    try
    {
        return in.rdbuf() ? static_cast<long long>(in.rdbuf()->pubseekoff(0, std::ios::cur, std::ios::in)) : -1;
    }
    catch (...)
    {
        return -1; // there are buffers that cannot tell and throw
    }
}
} // namespace vumo::detail
