#include "vumo/data/IndexPair.h"

#include "vumo/data/detail/IndexOrder.h"
#include "vumo/data/detail/IndexText.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <functional>

namespace vumo::Data
{
const vumo::ObjectCount IndexPair::_objectsCreated = vumo::Counted<IndexPair>::objectsCreated();
const vumo::ObjectCount IndexPair::_objectsAlive = vumo::Counted<IndexPair>::objectsAlive();

IndexPair::IndexPair(unsigned int first, unsigned int second) : mFirst(first), mSecond(second) {}

IndexPair::IndexPair(const std::string& text)
{
    unsigned int numbers[2];
    detail::parseIndexNumbers(text, numbers, 2);
    mFirst = numbers[0];
    mSecond = numbers[1];
}

void IndexPair::getIndexPair(unsigned int& first, unsigned int& second) const
{
    first = mFirst;
    second = mSecond;
}

std::string IndexPair::asString() const
{
    return std::to_string(mFirst) + " " + std::to_string(mSecond);
}

bool IndexPair::supportsDenseMode() const
{
    return true;
}

unsigned int IndexPair::denseSpaceBetween(const IndexType& other) const
{
    const auto* const pair = dynamic_cast<const IndexPair*>(&other);
    if (!pair)
        return 0;
    return detail::placesBetween(mFirst, pair->mFirst) * detail::placesBetween(mSecond, pair->mSecond);
}

bool IndexPair::operator==(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::equal_to<>(), false, false);
}

bool IndexPair::operator!=(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::not_equal_to<>(), true, true);
}

bool IndexPair::operator<(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::less<>(), true, false);
}

bool IndexPair::operator<=(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::less_equal<>(), true, false);
}

bool IndexPair::operator>(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::greater<>(), false, true);
}

bool IndexPair::operator>=(const IndexType& other) const
{
    return detail::compareIndexTypes(*this, other, std::greater_equal<>(), false, true);
}

bool IndexPair::operator==(const IndexPair& other) const
{
    return mFirst == other.mFirst && mSecond == other.mSecond;
}

bool IndexPair::operator!=(const IndexPair& other) const
{
    return mFirst != other.mFirst || mSecond != other.mSecond;
}

bool IndexPair::operator<(const IndexPair& other) const
{
    return mFirst == other.mFirst ? mSecond < other.mSecond : mFirst < other.mFirst;
}

bool IndexPair::operator<=(const IndexPair& other) const
{
    return mFirst == other.mFirst ? mSecond <= other.mSecond : mFirst < other.mFirst;
}

bool IndexPair::operator>(const IndexPair& other) const
{
    return mFirst == other.mFirst ? mSecond > other.mSecond : mFirst > other.mFirst;
}

bool IndexPair::operator>=(const IndexPair& other) const
{
    return mFirst == other.mFirst ? mSecond >= other.mSecond : mFirst > other.mFirst;
}

bool IndexPair::Debug(const IndexPair* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<IndexPair>("vumo::Data::IndexPair", request);
    request << object->mFirst << "," << object->mSecond;
    return true;
}

bool IndexPair::Debug(const IndexPair* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<IndexPair>(request);
    request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::Data
