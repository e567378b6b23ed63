#include "vumo/accessor/detail/File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace vumo::Data::detail
{
namespace
{
/// Repeats a system call until no signal interrupts it.
template <class Call>
auto uninterrupted(const Call& call) -> decltype(call())
{
    for (;;)
    {
        const auto result = call();
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

bool isRegular(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}
} // namespace

File::File(const std::string& name, eMode mode)
{
    const int access = mode == eMode::kRead ? O_RDONLY : O_RDWR;
    // Opening a pipe would wait for its other end.
    mDescriptor = uninterrupted([&] { return open(name.c_str(), access | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
    if (isOpen() && !isRegular(mDescriptor))
    {
        close(mDescriptor);
        mDescriptor = -1;
    }
}

File::~File()
{
    if (isOpen())
        close(mDescriptor);
}

std::uint64_t File::size() const
{
    struct stat status = {};
    return fstat(mDescriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

bool File::allowsPosition(std::uint64_t position) const
{
    return lseek(mDescriptor, static_cast<off_t>(position), SEEK_SET) >= 0;
}

std::size_t File::read(std::uint64_t position, char* bytes, std::size_t count) const
{
    std::size_t done = 0;
    while (done < count)
    {
        const ssize_t got = uninterrupted(
            [&] { return pread(mDescriptor, bytes + done, count - done, static_cast<off_t>(position + done)); });
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}
} // namespace vumo::Data::detail
