#include "vumo/data/IndexType.h"

namespace vumo
{
namespace Data
{
IndexType::IndexType() = default;

IndexType::IndexType(const IndexType&) = default;

IndexType::~IndexType() = default;
} // namespace Data
} // namespace vumo
