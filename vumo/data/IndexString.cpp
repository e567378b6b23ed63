#include "vumo/data/IndexString.h"

#include "vumo/data/detail/IndexOrder.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <functional>

namespace vumo::Data
{
namespace
{
/// Compares the texts at once where nothing can override how they compare.
template <class Compare>
bool compareTexts(const IndexString& left, const IndexType& right, Compare compare, bool whenClassPrecedes,
                  bool whenClassFollows)
{
    if (detail::areExactly(left, right))
        return compare(left.indexString(), static_cast<const IndexString&>(right).indexString());
    return detail::compareIndexTypes(left, right, compare, whenClassPrecedes, whenClassFollows);
}
} // namespace

const vumo::ObjectCount IndexString::_objectsCreated = vumo::Counted<IndexString>::objectsCreated();
const vumo::ObjectCount IndexString::_objectsAlive = vumo::Counted<IndexString>::objectsAlive();

IndexString::IndexString(const std::string& text) : mText(text) {}

IndexString& IndexString::operator=(const std::string& text)
{
    mText = text;
    return *this;
}

std::string IndexString::asString() const
{
    return mText;
}

bool IndexString::supportsDenseMode() const
{
    return false;
}

unsigned int IndexString::denseSpaceBetween(const IndexType&) const
{
    return 0;
}

bool IndexString::operator==(const IndexType& other) const
{
    return compareTexts(*this, other, std::equal_to<>(), false, false);
}

bool IndexString::operator!=(const IndexType& other) const
{
    return compareTexts(*this, other, std::not_equal_to<>(), true, true);
}

bool IndexString::operator<(const IndexType& other) const
{
    return compareTexts(*this, other, std::less<>(), true, false);
}

bool IndexString::operator<=(const IndexType& other) const
{
    return compareTexts(*this, other, std::less_equal<>(), true, false);
}

bool IndexString::operator>(const IndexType& other) const
{
    return compareTexts(*this, other, std::greater<>(), false, true);
}

bool IndexString::operator>=(const IndexType& other) const
{
    return compareTexts(*this, other, std::greater_equal<>(), false, true);
}

bool IndexString::operator==(const IndexString& other) const
{
    return mText == other.mText;
}

bool IndexString::operator!=(const IndexString& other) const
{
    return mText != other.mText;
}

bool IndexString::operator<(const IndexString& other) const
{
    return mText < other.mText;
}

bool IndexString::operator<=(const IndexString& other) const
{
    return mText <= other.mText;
}

bool IndexString::operator>(const IndexString& other) const
{
    return mText > other.mText;
}

bool IndexString::operator>=(const IndexString& other) const
{
    return mText >= other.mText;
}

bool IndexString::Debug(const IndexString* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<IndexString>("vumo::Data::IndexString", request);
    request << "" << object->mText; // a text may hold zero bytes
    return true;
}

bool IndexString::Debug(const IndexString* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<IndexString>(request);
    request.addObject(object, sizeof(*object));
    request.addMember(object->mText.data(), object->mText.size() + 1);
    return true;
}
} // namespace vumo::Data
