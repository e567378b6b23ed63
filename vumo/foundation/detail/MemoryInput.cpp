#include "vumo/foundation/detail/MemoryInput.h"

namespace vumo::detail
{
void MemoryBuffer::restart(std::string_view text, std::string_view::size_type offset, long long position)
{
    char* const begin = const_cast<char*>(text.data()); // nothing is ever put back into a buffer without room for it
    setg(begin, begin + offset, begin + text.size());
    mPosition = position;
}

MemoryBuffer::pos_type MemoryBuffer::seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode which)
{
    const off_type size = egptr() - eback();
    const off_type from = way == std::ios::cur ? gptr() - eback() : way == std::ios::end ? size : 0;
    const bool isInside = offset >= -from && offset <= size - from;
    if (!(which & std::ios::in) || !isInside)
        return pos_type(off_type(-1));
    setg(eback(), eback() + from + offset, egptr());
    return pos_type(mPosition < 0 ? mPosition : mPosition + from + offset);
}

MemoryBuffer::pos_type MemoryBuffer::seekpos(pos_type position, std::ios::openmode which)
{
    return seekoff(off_type(position) - mPosition, std::ios::beg, which);
}
} // namespace vumo::detail
