#include "vumo/serialize/detail/LineWindow.h"

#include <streambuf>

namespace vumo::Data::detail
{
namespace
{
/// Shows the characters that a buffer has at hand. gptr() and egptr() are protected, so only a class derived from
/// std::streambuf may name them; but what it names are members of std::streambuf, and by a pointer to such a member
/// they can be called for any buffer.
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
        release(); // the input is read in the usual way now, and must stand after what was given out
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
    // A tied output would be flushed late, and an input in a bad state would make release() throw or do nothing.
    const bool isUsable = mIn.good() && !mIn.tie();
    mAhead = isUsable ? GetArea::of(*mIn.rdbuf()) : std::string_view();
    if (!mAhead.empty())
        mAhead.remove_suffix(1); // release() must not empty the buffer, or it would be filled anew, over the last line
}

void LineWindow::release()
{
    if (mGiven > mLast)
        mIn.ignore(mGiven - mLast);
    if (mGiven > 0)
        mIn.ignore(mLast); // the last line on its own: gcount() is then what reading it leaves
    mGiven = 0;
    mAhead = std::string_view();
}
} // namespace vumo::Data::detail
