#include "vumo/data/MemberView.h"

#include "vumo/foundation/detail/Text.h"

#include <cstdlib>

namespace vumo::Data
{
void replaceString(void* string, const char* text)
{
    char* const copy = detail::duplicateText(text);
    std::free(loadScalar<char*>(string));
    storeScalar(string, copy);
}
} // namespace vumo::Data
