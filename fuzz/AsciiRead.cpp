// ASCII scene files are read or refused.
#include "fuzz/Fuzz.h"
#include "fuzz/Scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vumo::fuzz::readScene(".oa", data, size);
    return 0;
}
