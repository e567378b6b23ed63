#include "vumo/data/detail/StructureRegistry.h"

#include "vumo/data/Structure.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/Text.h"

#include <algorithm>
#include <string_view>

namespace vumo::Data::detail
{
namespace
{
StructureNames* theCurrentNames = nullptr;

/// Says whether an equal structure is registered.
bool isKnown(const Structure& structure)
{
    const auto isEqual = [&](const Structure* other) { return other && *other == structure; };
    if (const StructureNames* const names = StructureNames::current())
    {
        const std::vector<Structure*>* const found = names->find(structure.name());
        return found && std::any_of(found->begin(), found->end(), isEqual);
    }
    const std::set<Structure*>& registry = StructureRegistry::structures();
    return std::any_of(registry.begin(), registry.end(), isEqual);
}
} // namespace

std::set<Structure*>& StructureRegistry::structures()
{
    static std::set<Structure*> registry;
    return registry;
}

bool StructureRegistry::add(Structure& structure)
{
    if (isKnown(structure))
        return false;
    StructureNames::registered(structure); // may throw, so it comes first
    structures().insert(&structure);
    structure.ref();
    return true;
}

bool StructureRegistry::remove(Structure& structure)
{
    if (structures().erase(&structure) == 0)
        return false;
    StructureNames::changed();
    structure.unref();
    return true;
}

Structure* StructureRegistry::find(const char* name)
{
    if (!name)
        return nullptr;
    if (const StructureNames* const names = StructureNames::current())
    {
        const std::vector<Structure*>* const found = names->find(name);
        return found ? *std::min_element(found->begin(), found->end()) : nullptr; // the registry's first
    }
    for (Structure* const structure : structures())
    {
        if (structure && equalTexts(structure->name(), name))
            return structure;
    }
    return nullptr;
}

void StructureRegistry::clear()
{
    StructureNames::changed();
    std::set<Structure*>& registry = structures();
    while (!registry.empty())
    {
        Structure* const first = *registry.begin();
        registry.erase(registry.begin()); // first: a destructor may look at the registry
        if (first)
            first->unref();
    }
}

void StructureRegistry::renaming(Structure& structure)
{
    if (StructureNames::current() && structures().count(&structure) > 0)
        StructureNames::changed();
}

void StructureRegistry::describe(vumo::Debug::Print& request)
{
    if (structures().empty())
    {
        request << "No registered structures\n";
        return;
    }
    request.beginSection("Registered Structures");
    unsigned int i = 0;
    for (const Structure* structure : structures())
    {
        request << "Structure[" << i++ << "]" << (structure ? "\n" : " = NULL\n");
        if (structure)
            Structure::Debug(structure, request);
    }
    request.endSection();
}

StructureNames::StructureNames() : mIsTrusted(StructureRegistry::structures().empty()), mOuter(theCurrentNames)
{
    theCurrentNames = this;
}

StructureNames::~StructureNames()
{
    theCurrentNames = mOuter;
}

StructureNames* StructureNames::current()
{
    const bool isUsable = theCurrentNames && theCurrentNames->mIsTrusted &&
                          theCurrentNames->mCount == StructureRegistry::structures().size();
    return isUsable ? theCurrentNames : nullptr;
}

const std::vector<Structure*>* StructureNames::find(const char* name) const
{
    const auto found = mStructures.find(std::string_view(name));
    return found == mStructures.end() ? nullptr : &found->second;
}

void StructureNames::registered(Structure& structure)
{
    if (!theCurrentNames)
        return;
    theCurrentNames->mStructures[structure.name()].push_back(&structure);
    ++theCurrentNames->mCount;
}

void StructureNames::changed()
{
    if (theCurrentNames)
        theCurrentNames->mIsTrusted = false;
}
} // namespace vumo::Data::detail
