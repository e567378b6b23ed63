#include "vumo/data/detail/StructureNames.h"

#include "vumo/data/Structure.h"

#include <string_view>

namespace vumo::Data::detail
{
namespace
{
StructureNames* theCurrent = nullptr;
} // namespace

StructureNames::StructureNames() : mIsTrusted(Structure::allStructures().empty()), mOuter(theCurrent)
{
    theCurrent = this;
}

StructureNames::~StructureNames()
{
    theCurrent = mOuter;
}

StructureNames* StructureNames::current()
{
    const bool isUsable =
        theCurrent && theCurrent->mIsTrusted && theCurrent->mCount == Structure::allStructures().size();
    return isUsable ? theCurrent : nullptr;
}

const std::vector<Structure*>* StructureNames::find(const char* name) const
{
    const auto found = mStructures.find(std::string_view(name));
    return found == mStructures.end() ? nullptr : &found->second;
}

void StructureNames::registered(Structure& structure)
{
    if (!theCurrent)
        return;
    theCurrent->mStructures[structure.name()].push_back(&structure);
    ++theCurrent->mCount;
}

void StructureNames::changed()
{
    if (theCurrent)
        theCurrent->mIsTrusted = false;
}
} // namespace vumo::Data::detail
