// Associations that were read and can be written read back with the same text.
#include "fuzz/Fuzz.h"
#include "vumo/serialize/AssociationsSerializer.h"

#include <memory>
#include <sstream>

using vumo::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace vumo::Data;
    vumo::fuzz::registerStructures();
    const AssociationsSerializer& serializer = *AssociationsSerializer::formatByName("raw");
    std::istringstream in(vumo::fuzz::textOf(data, size));
    std::string errors;
    const std::unique_ptr<Associations> associations(serializer.read(in, errors));
    require(associations || !errors.empty(), "associations are refused without a word");
    std::string text;
    if (!associations || !vumo::fuzz::textOf(*associations, text))
        return 0; // a short line can become one that is too long: "t" is written as "true"

    std::istringstream again(text);
    const std::unique_ptr<Associations> readBack(serializer.read(again, errors));
    require(readBack != nullptr, "text that was written cannot be read: " + errors);
    std::string textAgain;
    require(vumo::fuzz::textOf(*readBack, textAgain) && textAgain == text, "text changes when it is read and written");
    return 0;
}
