#pragma once

#include "vumo/data/IndexType.h"

#include <typeinfo>

namespace vumo::Data::detail
{
/// Compares `left` with a value of any index type: by `compare` where both are a T, and by the order of
/// their classes where they are not.
template <class T, class Compare>
bool compareIndexTypes(const T& left, const IndexType& right, Compare compare, bool whenClassPrecedes,
                       bool whenClassFollows)
{
    if (const T* const same = dynamic_cast<const T*>(&right))
        return compare(left, *same);
    return typeid(left).before(typeid(right)) ? whenClassPrecedes : whenClassFollows;
}
} // namespace vumo::Data::detail
