#pragma once

#include "vumo/data/IndexType.h"

#include <typeinfo>

namespace vumo::Data::detail
{
/// |a - b| + 1 in 32-bit arithmetic.
inline unsigned int placesBetween(unsigned int a, unsigned int b)
{
    return (a > b ? a - b : b - a) + 1;
}

/// Says whether both are of exactly the class T, so that no derived class can have another opinion.
template <class T>
bool areExactly(const T& left, const IndexType& right)
{
    return typeid(right) == typeid(T) && typeid(left) == typeid(T);
}

/// Compares `left` with a value of any index type: by `compare` where both are a T, and by the order of
/// their classes where they are not.
template <class T, class Compare>
bool compareIndexTypes(const T& left, const IndexType& right, Compare compare, bool whenClassPrecedes,
                       bool whenClassFollows)
{
    if (typeid(left) == typeid(right)) // the usual case, and cheaper than the cast
        return compare(left, static_cast<const T&>(right));
    if (const T* const same = dynamic_cast<const T*>(&right)) // of a derived class, which compares as a T
        return compare(left, *same);
    return typeid(left).before(typeid(right)) ? whenClassPrecedes : whenClassFollows;
}
} // namespace vumo::Data::detail
