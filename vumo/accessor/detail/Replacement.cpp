#include "vumo/accessor/detail/Replacement.h"

namespace vumo::Data::detail
{
bool Replacement::cut(std::uint64_t from, std::uint64_t to)
{
    if (!mHasBegun)
        mFrom = from;
    else if (!copyUntil(from))
        return false;
    mHasBegun = true;
    mTo = to;
    return true;
}

std::uint64_t Replacement::newPlaceOf(std::uint64_t position) const
{
    return mHasBegun ? newPlace() + (position - mTo) : position;
}

bool Replacement::finish(std::uint64_t end)
{
    if (!mHasBegun)
        mFrom = mTo = end;
    const bool hasMoved = newPlace() != mTo;
    return !hasMoved || copyUntil(end);
}

bool Replacement::copyUntil(std::uint64_t position)
{
    if (position > mTo && !mCopy(mTo, position, mBytes))
        return false;
    mTo = position;
    return true;
}
} // namespace vumo::Data::detail
