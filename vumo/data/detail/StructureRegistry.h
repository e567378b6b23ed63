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
/// The registry behind the statics of `Structure`, which say what each does: that of the process, or the calling
/// thread's own one while it has one.
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

/// A registry of the thread's own, empty at first, which that thread has in place of any other for as long as this
/// object lives. In the end it releases what is registered in it.
///
/// It is made for those who register many structures, one after the other: it finds them by name without a walk over
/// the registry. Anybody can change the registry by `Structure::allStructures()`, so the names are only trusted while
/// as many structures are registered as were registered through `Structure`.
class OwnRegistry
{
public:
    OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;
    OwnRegistry& operator=(const OwnRegistry&) = delete;
    ~OwnRegistry();

    std::set<Structure*>& structures() { return mStructures; }

    /// Says whether the names can be trusted.
    bool hasNames() const { return mIsTrusted && mCount == mStructures.size(); }

    /// All structures of that name, or null. Only while hasNames().
    const std::vector<Structure*>* find(const char* name) const;

    /// What the registry tells of itself.
    void registered(Structure& structure);
    void changed() { mIsTrusted = false; } ///< otherwise than by a registration

private:
    std::set<Structure*> mStructures;

    // Not hashed: whoever writes a file could choose very many names of one hash.
    std::map<std::string, std::vector<Structure*>, std::less<>> mByName;
    std::size_t mCount = 0;
    bool mIsTrusted = true;
    OwnRegistry* const mOuter; // of a read that made this one's caller read, too
};
} // namespace vumo::Data::detail
