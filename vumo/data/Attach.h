#pragma once

#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
class Associations;

/// How any object of a host exposes the metadata attached to it: one `Associations`, or none.
///
/// `AttachDirectly` keeps it inside the object; derive from this class to keep it elsewhere.
class VUMO_EXPORT Attach
{
public:
    virtual ~Attach();

    /// The attached metadata, owned by the object, or null; changes to it are seen by all that share it.
    virtual Associations* editableMetadata() = 0;
    virtual const Associations* metadata() const = 0;

    /// Attaches metadata that shares what `metadata` holds, in place of any attached before.
    virtual bool setMetadata(const Associations& metadata) = 0;
    virtual bool deleteMetadata() = 0;

    static bool Debug(const Attach* object, vumo::Debug::Print& request);
    static bool Debug(const Attach* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
