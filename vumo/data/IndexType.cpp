#include "vumo/data/IndexType.h"

namespace vumo::Data
{
IndexType::IndexType() = default;

IndexType::IndexType(const IndexType&) = default;

IndexType::~IndexType() = default;
} // namespace vumo::Data
