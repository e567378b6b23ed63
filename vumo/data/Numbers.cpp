#include "vumo/data/Numbers.h"

#include "vumo/foundation/detail/NumberFormat.h"

namespace vumo::Data
{
std::ios_base& exactNumbers(std::ios_base& out)
{
    detail::NumberFormat::setExact(out, true);
    return out;
}

std::ios_base& sixDigits(std::ios_base& out)
{
    detail::NumberFormat::setExact(out, false);
    return out;
}
} // namespace vumo::Data
