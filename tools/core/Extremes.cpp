#include "core/Extremes.h"

#include "vumo/data/MemberView.h"
#include "vumo/data/StreamIterator.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

using namespace vumo::Data;

namespace
{
template <class T>
std::string numberText(T number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

template <class T>
bool isNumber(T value)
{
    if constexpr (std::is_floating_point_v<T>)
        return std::isfinite(value);
    else
        return true;
}

/// Looks at the values of a member in all these blocks of elements, if they are of type T.
template <class T>
void find(const Member& member, const std::vector<const char*>& blocks, std::optional<Extremes>& result)
{
    const unsigned int count = MemberTypes<T>::valueCount(&member);
    if (count == 0)
        return;
    T least = std::numeric_limits<T>::max();
    T greatest = std::numeric_limits<T>::lowest();
    for (const char* const block : blocks)
    {
        const typename MemberView<const T>::Values values(block + Member::offset(&member), count);
        for (unsigned int i = 0; i < count; ++i)
        {
            const T value = values[i];
            if (!isNumber(value))
                continue;
            greatest = value < greatest ? greatest : value;
            least = least < value ? least : value;
        }
    }
    if (least <= greatest) // there is one
        result = {numberText(least), numberText(greatest)};
}

template <class... Types>
void findOneOf(const Member& member, const std::vector<const char*>& blocks, std::optional<Extremes>& result)
{
    (find<Types>(member, blocks, result), ...);
}
} // namespace

std::vector<std::optional<Extremes>> extremesOf(const Stream& stream)
{
    std::vector<const char*> blocks;
    const StreamIterator end = stream.cend(); // it costs as much as a step
    for (StreamIterator element = stream.cbegin(); element != end; ++element)
        blocks.push_back(element->data());
    std::vector<std::optional<Extremes>> extremes;
    for (const Member& member : stream.structure())
        findOneOf<double, float, std::int8_t, std::int16_t, std::int32_t, std::int64_t, std::uint8_t, std::uint16_t,
                  std::uint32_t, std::uint64_t>(member, blocks, extremes.emplace_back());
    return extremes;
}
