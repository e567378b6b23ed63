#include "core/Output.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

bool StandardOutput::isTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool StandardOutput::isSharedWithErrors()
{
    struct stat out = {};
    struct stat errors = {};
    return fstat(STDOUT_FILENO, &out) == 0 && fstat(STDERR_FILENO, &errors) == 0 && out.st_dev == errors.st_dev &&
           out.st_ino == errors.st_ino;
}

StandardOutput::int_type StandardOutput::overflow(int_type byte)
{
    if (sync() != 0)
        return traits_type::eof();
    if (!traits_type::eq_int_type(byte, traits_type::eof()))
        sputc(traits_type::to_char_type(byte));
    return traits_type::not_eof(byte);
}

int StandardOutput::sync()
{
    for (const char* at = pbase(); at < pptr() && mError == 0;)
    {
        const ssize_t written = ::write(STDOUT_FILENO, at, static_cast<std::size_t>(pptr() - at));
        if (written >= 0)
            at += written;
        else if (errno != EINTR)
            mError = errno;
    }
    setp(mBuffer.data(), mBuffer.data() + mBuffer.size());
    return mError == 0 ? 0 : -1;
}

LeadingWords::int_type LeadingWords::overflow(int_type byte)
{
    const char character = traits_type::to_char_type(byte);
    return xsputn(&character, 1) == 1 ? byte : traits_type::eof();
}

std::streamsize LeadingWords::xsputn(const char* text, std::streamsize length)
{
    const char* const end = text + length;
    for (const char* at = text; at < end;)
    {
        if (mIsLineStart)
            mOut << mWords;
        const char* const lineEnd = std::find(at, end, mLineEnd);
        mIsLineStart = lineEnd != end;
        const char* const next = mIsLineStart ? lineEnd + 1 : end;
        mOut.write(at, next - at);
        at = next;
    }
    return mOut ? length : 0;
}
