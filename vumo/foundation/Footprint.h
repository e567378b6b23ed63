#pragma once

#include "vumo/foundation/Export.h"

#include <cstddef>

namespace vumo::Debug
{
class Print;

/// Adds up the memory that objects use, in bytes and in separately allocated pieces.
///
/// Hand one to a class's `Debug(const T*, Footprint&)`: with an object it adds what that object uses,
/// with null what the class's static data uses.
class VUMO_EXPORT Footprint
{
public:
    Footprint() = default;
    Footprint(const Footprint&) = default;
    Footprint& operator=(const Footprint&) = default;
    virtual ~Footprint();

    virtual void clear();

    /// Adds a piece of memory that an object owns: a name, an array, a block.
    virtual void addMember(const void* member, std::size_t bytes);

    /// Adds an object itself.
    virtual void addObject(const void* object, std::size_t bytes);

    unsigned long long totalSize() const { return mTotalSize; }
    unsigned long long totalFragments() const { return mTotalFragments; }

    static bool Debug(const Footprint* object, Print& request);
    static bool Debug(const Footprint* object, Footprint& request);

private:
    unsigned long long mTotalSize = 0;
    unsigned long long mTotalFragments = 0;
    bool mSkipObjects = false;
};
} // namespace vumo::Debug
