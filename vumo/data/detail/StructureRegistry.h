#pragma once

#include "vumo/foundation/DebugFwd.h"

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace vumo::Data
{
class Structure;
}

namespace vumo::Data::detail
{
/// The registry behind the statics of `Structure`, which say what each does.
class StructureRegistry
{
public:
    StructureRegistry() = delete;

    static std::set<Structure*>& structures();
    static bool add(Structure& structure);
    static bool remove(Structure& structure);
    static Structure* find(const char* name);
    static void clear();

    /// To be called before a structure, registered or not, changes its name.
    static void renaming(Structure& structure);

    static void describe(vumo::Debug::Print& request);
};

/// Finds registered structures by name without a walk over the registry, for as long as it lives: for those who
/// register many, one after the other.
///
/// To be made while the registry is empty. Anybody can change the registry by `Structure::allStructures()`, so the
/// names are only trusted while as many structures are registered as were registered through `Structure`; otherwise the
/// registry is walked, as it is without them. One that is made while another lives takes its place until it ends.
class StructureNames
{
public:
    StructureNames();
    StructureNames(const StructureNames&) = delete;
    StructureNames& operator=(const StructureNames&) = delete;
    ~StructureNames();

    /// The one that lives, if it can be trusted; else null.
    static StructureNames* current();

    /// All registered structures of that name, or null.
    const std::vector<Structure*>* find(const char* name) const;

    /// What the registry tells of itself; each does nothing when there is no names object.
    static void registered(Structure& structure);
    static void changed(); ///< otherwise than by a registration

private:
    // Not hashed: whoever writes a file could choose very many names of one hash.
    std::map<std::string, std::vector<Structure*>, std::less<>> mStructures;
    std::size_t mCount = 0;
    bool mIsTrusted = true;
    StructureNames* mOuter;
};
} // namespace vumo::Data::detail
