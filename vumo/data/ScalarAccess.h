#pragma once

#include <cstring>
#include <type_traits>

namespace vumo::Data
{
/// Reads the scalar at `source`, which may lie at any address: strides such as 17 misalign elements.
template <class T>
T loadScalar(const void* source)
{
    if constexpr (std::is_same_v<T, bool>)
    {
        unsigned char byte; // a stored byte other than 0 and 1 must not be read as a bool
        std::memcpy(&byte, source, sizeof(byte));
        return byte != 0;
    }
    else
    {
        T value;
        std::memcpy(&value, source, sizeof(value));
        return value;
    }
}

template <class T>
void storeScalar(void* dest, T value)
{
    std::memcpy(dest, &value, sizeof(value));
}
} // namespace vumo::Data
