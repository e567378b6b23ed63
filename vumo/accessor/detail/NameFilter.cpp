#include "vumo/accessor/detail/NameFilter.h"

namespace vumo::Data::detail
{
NameFilter::NameFilter(const std::set<std::string>* wanted) : mWantsAll(wanted == nullptr)
{
    if (wanted)
        mWanted = *wanted;
}

bool NameFilter::accept(const std::string& name)
{
    return mWantsAll || mWanted.erase(name) > 0;
}
} // namespace vumo::Data::detail
