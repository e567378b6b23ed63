// Binary scene files that can be read are rewritten without a loss.
#include "fuzz/Fuzz.h"
#include "fuzz/Scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    vumo::fuzz::rewriteScene(".ob", data, size);
    return 0;
}
