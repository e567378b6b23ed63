#pragma once

#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/serialize/StructureSerializer.h"

#include <atomic>
#include <iosfwd>
#include <string>

namespace vumo::Data
{
/// The format "debug" of structures: all that debug printing tells about one. For inspection, it cannot be
/// read. Not found by its name until somebody registers it.
class VUMO_EXPORT StructureSerializerDebug : public StructureSerializer
{
public:
    /// The one format, made with the first call; the default stays what it is.
    static StructureSerializerDebug* theFormat();

    StructureSerializerDebug();

    const char* formatType() const override;
    ~StructureSerializerDebug() override;

    /// Reads nothing; null, with the reason in `errors`.
    Structure* read(std::istream& in, std::string& errors) const override;

    int write(const Structure& structure, std::ostream& out) const override;
    std::ostream& getFormatDescription(std::ostream& out) const override;

    /// What formatType() returns.
    static const char* const structureFormatType;

    static bool Debug(const StructureSerializerDebug* object, vumo::Debug::Print& request);
    static bool Debug(const StructureSerializerDebug* object, vumo::Debug::Footprint& request);

private:
    static std::atomic<StructureSerializerDebug*> theInstance;
};
} // namespace vumo::Data
