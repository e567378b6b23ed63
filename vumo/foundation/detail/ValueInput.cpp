#include "vumo/foundation/detail/ValueInput.h"

namespace vumo::Data::detail
{
bool ValueInput::skipToText()
{
    Traits::int_type next = peek();
    while (!Traits::eq_int_type(next, Traits::eof()) && isClassicSpace(Traits::to_char_type(next)))
    {
        get();
        next = peek();
    }
    return !Traits::eq_int_type(next, Traits::eof());
}
} // namespace vumo::Data::detail
