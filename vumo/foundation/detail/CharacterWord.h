#pragma once

#include "vumo/foundation/detail/Namespace.h"

#include <cstdint>
#include <cstring>

namespace vumo::detail
{
/// Eight characters as one number, whose lowest byte is the first of them on every machine.
inline std::uint64_t inCharacterOrder(std::uint64_t bytes)
{
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return __builtin_bswap64(bytes);
#else
    return bytes;
#endif
}

inline std::uint64_t loadCharacters(const char* text)
{
    std::uint64_t bytes;
    std::memcpy(&bytes, text, sizeof(bytes));
    return inCharacterOrder(bytes);
}

inline void storeCharacters(char* text, std::uint64_t characters)
{
    const std::uint64_t bytes = inCharacterOrder(characters);
    std::memcpy(text, &bytes, sizeof(bytes));
}
} // namespace vumo::detail
