#pragma once

#include "vumo/accessor/detail/File.h"

#include <istream>
#include <streambuf>

namespace vumo::Data::detail
{
/// Reads from a file exactly what is asked for, with one call of the system for each request.
class FileBuffer : public std::streambuf
{
public:
    /// Borrows the file.
    explicit FileBuffer(const File& file) : mFile(file) {}

protected:
    int_type underflow() override;
    int_type uflow() override;
    std::streamsize xsgetn(char* bytes, std::streamsize count) override;
    pos_type seekoff(off_type offset, std::ios::seekdir way, std::ios::openmode which) override;
    pos_type seekpos(pos_type position, std::ios::openmode which) override;

private:
    const File& mFile;
    std::uint64_t mPosition = 0;
};

/// An input of a file, for large requests. It has failed when the file is not open. Borrows the file.
class FileInput : public std::istream
{
public:
    explicit FileInput(const File& file);

private:
    FileBuffer mBuffer;
};
} // namespace vumo::Data::detail
