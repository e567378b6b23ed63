#pragma once

#include "vumo/accessor/Accessor.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace vumo::Data
{
/// Makes the accessors for files of one extension. A factory is known from its construction to its
/// destruction, so one static object is all that a new kind of scene file takes to be found by its extension.
class VUMO_EXPORT AccessorFactoryBase
{
public:
    /// Registers the factory for the extension, whatever its case. Does nothing for an empty extension or for
    /// one that has a factory already: the first one stays.
    explicit AccessorFactoryBase(const std::string& extension);

    AccessorFactoryBase(const AccessorFactoryBase&) = delete;
    AccessorFactoryBase& operator=(const AccessorFactoryBase&) = delete;

    /// Removes this factory's own entry, if it has one.
    virtual ~AccessorFactoryBase();

    /// A new, empty accessor.
    virtual std::unique_ptr<Accessor> create() const = 0;

    static bool Debug(const AccessorFactoryBase* object, vumo::Debug::Print& request);
    static bool Debug(const AccessorFactoryBase* object, vumo::Debug::Footprint& request);

private:
    friend class Accessor; // looks the factories up

    using Registry = std::unordered_map<std::string, AccessorFactoryBase*>; // by extension, in lower case

    static Registry& registry();

    /// `tolower` for each character.
    static std::string lowerCase(std::string extension);
};
} // namespace vumo::Data
