#pragma once

#include "vumo/foundation/detail/Namespace.h"

namespace vumo::detail
{
/// Says whether the lowest byte of a number stands first in memory.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
constexpr bool kIsLittleEndian = true;
#else
constexpr bool kIsLittleEndian = false;
#endif
} // namespace vumo::detail
