#include "vumo/serialize/detail/LineWindow.h"

#include <streambuf>

namespace vumo::Data::detail
{
namespace
{
/// Shows the characters that a buffer has at hand, which only its own kind may see.
struct GetArea : std::streambuf
{
    static std::string_view of(const std::streambuf& buffer)
    {
        const char* const begin = (buffer.*&GetArea::gptr)();
        const char* const end = (buffer.*&GetArea::egptr)();
        return {begin, static_cast<std::string_view::size_type>(end - begin)};
    }
};
} // namespace

bool LineWindow::next(std::string_view& line, std::string_view::size_type limit)
{
    if (mGiven == 0)
        open();
    const std::string_view::size_type length = mAhead.substr(0, limit + 1).find('\n');
    if (length == std::string_view::npos)
    {
        release();
        return false;
    }
    line = mAhead.substr(0, length);
    mAhead.remove_prefix(length + 1);
    mLast = static_cast<std::streamsize>(length) + 1;
    mGiven += mLast;
    return true;
}

void LineWindow::open()
{
    const bool isUsable = mIn.good() && !mIn.tie(); // nothing is flushed late, and release() has nothing to throw
    mAhead = isUsable ? GetArea::of(*mIn.rdbuf()) : std::string_view();
    if (!mAhead.empty())
        mAhead.remove_suffix(1); // a buffer that is emptied by release() would be filled anew
}

void LineWindow::release()
{
    if (mGiven > mLast)
        mIn.ignore(mGiven - mLast);
    if (mGiven > 0)
        mIn.ignore(mLast); // on its own, as it would have been read
    mGiven = 0;
    mAhead = std::string_view();
}
} // namespace vumo::Data::detail
