#include "vumo/serialize/detail/Messages.h"

namespace vumo::Data::detail
{
void Messages::add(const std::string& message)
{
    note(message);
    ++mCount;
}

void Messages::note(const std::string& message)
{
    mText += message;
    mText += '\n';
}

int Messages::appendTo(std::string& errors) const
{
    errors += mText;
    return mCount;
}

int Messages::report(const std::string& consequence, std::string& errors)
{
    if (mCount == 0)
        return 0; // what was only noted is not worth a report
    note(std::to_string(mCount) + (mCount > 1 ? " errors" : " error") + " found, " + consequence);
    return appendTo(errors);
}
} // namespace vumo::Data::detail
