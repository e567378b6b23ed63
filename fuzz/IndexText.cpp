// An index text is refused with one of the three codes, or makes an index whose own text makes it again.
// The first byte of an input chooses the type.
#include "fuzz/Fuzz.h"
#include "vumo/data/Index.h"

#include <iterator>

using vumo::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using vumo::Data::Index;
    static constexpr const char* kTypes[] = {"numeric", "pair", "string"};
    if (size == 0)
        return 0;
    const std::string type = kTypes[data[0] % std::size(kTypes)];
    try
    {
        const Index index = Index::doCreate(type, vumo::fuzz::textOf(data + 1, size - 1));
        require(index.typeName() == type, "an index is of another type");
        require(Index::doCreate(type, index.asString()) == index, "the text of an index makes another index");
        require(!(index < index) && index <= index, "an index is lower than itself");
    }
    catch (Index::eCreationErrors)
    {
        require(type != "string", "a text is refused");
    }
    return 0;
}
