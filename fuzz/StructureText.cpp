// A structure that was read can be written, and reads back as an equal one. (Two fields with names make one without
// members, for which there is no text.)
#include "fuzz/Fuzz.h"
#include "vumo/data/Structure.h"
#include "vumo/foundation/Ref.h"
#include "vumo/serialize/StructureSerializer.h"

#include <sstream>

using vumo::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vumo::Data;
    const StructureSerializer& serializer = *StructureSerializer::formatByName("raw");
    std::istringstream in(vumo::fuzz::textOf(data, size));
    std::string errors;
    const vumo::Ref<const Structure> structure(serializer.read(in, errors));
    if (!structure)
    {
        require(!errors.empty(), "a structure is refused without a word");
        return 0;
    }
    if (structure->empty())
        return 0;
    std::stringstream text;
    require(serializer.write(*structure, text) == 0, "a structure that was read cannot be written");
    const vumo::Ref<const Structure> again(serializer.read(text, errors));
    require(again && *again == *structure, "a structure reads back as another one");
    return 0;
}
