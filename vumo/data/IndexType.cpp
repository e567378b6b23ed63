#include "vumo/data/IndexType.h"

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
IndexType::IndexType() = default;

IndexType::IndexType(const IndexType&) = default;

IndexType::~IndexType() = default;

bool IndexType::Debug(const IndexType* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::IndexType", object, request);
}

bool IndexType::Debug(const IndexType* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
