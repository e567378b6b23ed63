#pragma once

#include "vumo/data/Structure.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"
#include "vumo/serialize/SerializerRaw.h"
#include "vumo/serialize/StructureSerializer.h"

#include <atomic>
#include <iosfwd>
#include <string>

namespace vumo::Data
{
/// The format "raw" of structures: fields separated by ":" or newlines, the name and then the members, such as
/// "name=My Structure:int32=ID:float[3]=Origin".
///
/// Names cannot be quoted: one with a ":", "=" or newline in it, or with whitespace at an end, is not read back
/// as it was written.
class VUMO_EXPORT StructureSerializerRaw : public StructureSerializer, private SerializerRaw
{
public:
    /// The one format, made with the first call, which also makes it the default.
    static StructureSerializerRaw* theFormat();

    /// Makes the new object the default.
    StructureSerializerRaw();

    const char* formatType() const override;
    ~StructureSerializerRaw() override;

    /// Reads to the end of the input. `errors` is cleared first; after a failure it has a line for each faulty
    /// field, the last without a newline. Of several members of one name the first is kept.
    Structure* read(std::istream& in, std::string& errors) const override;

    /// One line without a newline; always returns 0.
    int write(const Structure& structure, std::ostream& out) const override;
    std::ostream& getFormatDescription(std::ostream& out) const override;

    static bool Debug(const StructureSerializerRaw* object, vumo::Debug::Print& request);
    static bool Debug(const StructureSerializerRaw* object, vumo::Debug::Footprint& request);

private:
    static std::atomic<StructureSerializerRaw*> theInstance;
};
} // namespace vumo::Data
