#include "vumo/serialize/SerializerRaw.h"

#include "vumo/foundation/detail/Characters.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <iterator>

namespace vumo::Data
{
namespace
{
constexpr const char* kKeywords[] = {"=",   "endAssociations", "endChannel", "channel", "name",      "indexType", ":",
                                     "raw", "endStream",       "stream",     "name",    "structure", "name"};

bool isSeparator(char c)
{
    return c == '\n' || c == ':';
}
} // namespace

const char* SerializerRaw::keyword(eKeyword k)
{
    return k < std::size(kKeywords) ? kKeywords[k] : "????";
}

std::string SerializerRaw::collapseWhitespace(std::string& s)
{
    return s = std::string(detail::trimmed(s));
}

std::string SerializerRaw::standardizeSeparators(std::string& s)
{
    std::string::size_type kept = 0;
    for (std::string::size_type i = 0; i < s.size(); ++i)
    {
        const char c = s[i];
        if (isSeparator(c) && i + 1 < s.size() && isSeparator(s[i + 1]))
            continue;
        s[kept++] = c == '\n' ? ':' : c;
    }
    s.erase(kept);
    return s;
}

std::vector<std::string>& SerializerRaw::splitString(const std::string& s, char delimiter,
                                                     std::vector<std::string>& pieces)
{
    std::string::size_type begin = 0;
    while (begin < s.size())
    {
        std::string::size_type end = s.find(delimiter, begin);
        if (end == std::string::npos)
            end = s.size();
        pieces.push_back(s.substr(begin, end - begin));
        begin = end + 1;
    }
    return pieces;
}

bool SerializerRaw::Debug(const SerializerRaw* object, vumo::Debug::Print& request)
{
    if (object)
        return vumo::detail::debugObject("vumo::Data::SerializerRaw", object, request);
    request.beginSection("Keywords");
    for (const char* const text : kKeywords)
        request << text << "\n";
    request.endSection();
    return true;
}

bool SerializerRaw::Debug(const SerializerRaw* object, vumo::Debug::Footprint& request)
{
    if (!object)
        request.addMember(kKeywords, sizeof(kKeywords));
    return vumo::detail::debugObject(object, request);
}
} // namespace vumo::Data
