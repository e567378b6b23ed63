#include "vumo/accessor/detail/FileInput.h"

namespace vumo::Data::detail
{
FileBuffer::int_type FileBuffer::underflow()
{
    char byte = 0;
    return mFile.read(mPosition, &byte, 1) == 1 ? traits_type::to_int_type(byte) : traits_type::eof();
}

FileBuffer::int_type FileBuffer::uflow()
{
    const int_type byte = underflow();
    if (!traits_type::eq_int_type(byte, traits_type::eof()))
        ++mPosition;
    return byte;
}

std::streamsize FileBuffer::xsgetn(char* bytes, std::streamsize count)
{
    const std::size_t got = mFile.read(mPosition, bytes, static_cast<std::size_t>(count));
    mPosition += got;
    return static_cast<std::streamsize>(got);
}

FileBuffer::pos_type FileBuffer::seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode /*which*/)
{
    // Nothing but this position moves. The file is asked whether it can have it, as any file's seek would.
    const std::uint64_t from = way == std::ios::cur ? mPosition : way == std::ios::end ? mFile.size() : 0;
    const off_type position = static_cast<off_type>(from) + offset;
    if (position < 0 || !mFile.allowsPosition(static_cast<std::uint64_t>(position)))
        return pos_type(off_type(-1));
    mPosition = static_cast<std::uint64_t>(position);
    return pos_type(position);
}

FileBuffer::pos_type FileBuffer::seekpos(pos_type position, std::ios::openmode which)
{
    return seekoff(off_type(position), std::ios::beg, which);
}

FileInput::FileInput(const File& file) : std::istream(nullptr), mBuffer(file)
{
    if (file.isOpen())
        rdbuf(&mBuffer);
}
} // namespace vumo::Data::detail
