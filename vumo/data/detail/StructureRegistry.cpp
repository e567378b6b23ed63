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
thread_local OwnRegistry* theOwn = nullptr;

/// The calling thread's, if it finds structures by name.
const OwnRegistry* ownNames()
{
    return theOwn && theOwn->hasNames() ? theOwn : nullptr;
}

/// Says whether an equal structure is registered.
bool isKnown(const Structure& structure)
{
    const auto isEqual = [&](const Structure* other) { return other && *other == structure; };
    if (const OwnRegistry* const names = ownNames())
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
    return theOwn ? theOwn->structures() : registry;
}

bool StructureRegistry::add(Structure& structure)
{
    if (isKnown(structure))
        return false;
    if (theOwn)
        theOwn->registered(structure); // may throw, so it comes first
    structures().insert(&structure);
    structure.ref();
    return true;
}

bool StructureRegistry::remove(Structure& structure)
{
    if (structures().erase(&structure) == 0)
        return false;
    if (theOwn)
        theOwn->changed();
    structure.unref();
    return true;
}

Structure* StructureRegistry::find(const char* name)
{
    if (!name)
        return nullptr;
    if (const OwnRegistry* const names = ownNames())
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
    if (theOwn)
        theOwn->changed();
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
    if (ownNames() && structures().count(&structure) > 0)
        theOwn->changed();
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

OwnRegistry::OwnRegistry() : mOuter(theOwn)
{
    theOwn = this;
}

OwnRegistry::~OwnRegistry()
{
    StructureRegistry::clear();
    theOwn = mOuter;
}

const std::vector<Structure*>* OwnRegistry::find(const char* name) const
{
    const auto found = mByName.find(std::string_view(name));
    return found == mByName.end() ? nullptr : &found->second;
}

void OwnRegistry::registered(Structure& structure)
{
    mByName[structure.name()].push_back(&structure);
    ++mCount;
}
} // namespace vumo::Data::detail
