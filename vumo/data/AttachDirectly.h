#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Attach.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

#include <memory>

namespace vumo::Data
{
/// Keeps the metadata of an object inside that object, which derives from this class.
class VUMO_EXPORT AttachDirectly : public Attach
{
public:
    /// Without metadata.
    AttachDirectly();

    /// Both share the source's metadata; of a source without any, the target gets an empty one.
    AttachDirectly(const AttachDirectly& other);
    AttachDirectly& operator=(const AttachDirectly& other);
    ~AttachDirectly() override;

    Associations* editableMetadata() override;
    const Associations* metadata() const override;

    /// Always true. Does nothing when `metadata` is the very object attached.
    bool setMetadata(const Associations& metadata) override;

    /// Always true, also when there was none.
    bool deleteMetadata() override;

    static bool Debug(const AttachDirectly* object, vumo::Debug::Print& request);
    static bool Debug(const AttachDirectly* object, vumo::Debug::Footprint& request);

private:
    std::unique_ptr<Associations> mMetadata; // or null
};
} // namespace vumo::Data
