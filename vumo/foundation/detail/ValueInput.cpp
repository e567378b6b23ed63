#include "vumo/foundation/detail/ValueInput.h"

namespace vumo::detail
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

void ValueInput::goBack()
{
    std::istream& in = stream();
    try
    {
        if (in.rdbuf())
            in.rdbuf()->pubseekoff(-mTaken, std::ios::cur, std::ios::in);
    }
    catch (...)
    {
        return; // there are buffers that cannot move and throw
    }
}

void ValueInput::skipWord()
{
    std::istream& in = stream();
    mFailure |= in.rdstate();
    if (!in.bad())
        in.clear();
    while (!isAtSeparator())
        get();
}
} // namespace vumo::detail
