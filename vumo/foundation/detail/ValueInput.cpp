#include "vumo/foundation/detail/ValueInput.h"

#include <locale>

namespace vumo::detail
{
namespace
{
/// Moves an input relative to where it stands; its position then, or -1 where it cannot tell.
long long move(std::istream& in, std::streamoff offset)
{
    try
    {
        return in.rdbuf() ? static_cast<long long>(in.rdbuf()->pubseekoff(offset, std::ios::cur, std::ios::in)) : -1;
    }
    catch (...)
    {
        return -1; // there are buffers that cannot do it and throw
    }
}
} // namespace

long long readPosition(std::istream& in)
{
    return move(in, 0);
}

ValueInput::ValueInput(std::istream& in)
{
    open(in.rdbuf());
    mStream->setstate(in.rdstate());
}

void ValueInput::openText()
{
    open(&mBuffer);
    mStream->exceptions(std::ios::badbit); // a text does not break: this is a lack of memory inside an extraction
}

void ValueInput::clearStream()
{
    mStream->clear();
}

void ValueInput::open(std::streambuf* buffer)
{
    mStream.emplace(nullptr);
    mStream->imbue(std::locale::classic()); // while there is no buffer, which would be imbued as well
    mStream->rdbuf(buffer);
}

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
    move(stream(), -mTaken);
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
