#include "core/Elements.h"

#include "core/Nearest.h"
#include "core/Text.h"
#include "tools/codec/JsonElements.h"
#include "vumo/data/IndexPair.h"
#include "vumo/foundation/Ref.h"

using namespace vumo::Data;

namespace
{
/// Takes "name[i]" apart.
bool splitIndex(const std::string& text, std::string& name, unsigned int& i)
{
    constexpr std::string::size_type kMostDigits = 9;
    const std::string::size_type open = text.rfind('[');
    if (open == std::string::npos || text.back() != ']')
        return false;
    const std::string digits = text.substr(open + 1, text.size() - open - 2);
    if (digits.empty() || digits.size() > kMostDigits || digits.find_first_not_of("0123456789") != std::string::npos)
        return false;
    name = text.substr(0, open);
    i = static_cast<unsigned int>(std::stoul(digits));
    return true;
}
} // namespace

Index indexFrom(const SceneFile& scene, const Stream& stream, const std::string& text)
{
    try
    {
        return Index::doCreate(stream.indexType(), text);
    }
    catch (Index::eCreationErrors)
    {
        const std::string& type = stream.indexType();
        throw scene.failure(kNo, inQuotes(text) + " is not an index of type " + inQuotes(type) +
                                     (type == IndexPair::myTypeName ? ", which is one word, such as \"0 3\"" : ""));
    }
}

Handle elementAt(const SceneFile& scene, const Stream& stream, const std::string& text, const std::string& advice)
{
    const Index index = indexFrom(scene, stream, text);
    if (!stream.hasElement(index))
        throw scene.failure(kNo, "stream " + inQuotes(stream.name()) + " has no element at index " + inQuotes(text) +
                                     advice);
    return stream.element(index);
}

MemberPart findMember(const SceneFile& scene, const Stream& stream, const std::string& name, Handle& element)
{
    if (element.setPositionByMemberName(name.c_str()))
        return {0, element.dataLength()};
    std::string plainName;
    unsigned int i = 0;
    const bool isOneValue = splitIndex(name, plainName, i);
    if (!isOneValue || !element.setPositionByMemberName(plainName.c_str()))
    {
        std::vector<std::string> names;
        for (const Member& member : stream.structure())
            names.emplace_back(Member::name(&member));
        throw scene.failure(kNo,
                            "there is no member " + inQuotes(name) + didYouMean(isOneValue ? plainName : name, names));
    }
    if (i >= element.dataLength())
        throw scene.failure(kNo, "member " + inQuotes(plainName) + " has no value [" + std::to_string(i) + "]");
    return {i, 1};
}

std::string cellText(const Handle& handle, const MemberPart& part)
{
    const bool isQuoted = handle.dataType() == Member::kString && part.count > 1;
    std::string result;
    for (unsigned int i = part.first; i < part.first + part.count; ++i)
    {
        const std::string value = handle.str(i, kExact);
        result += (i > part.first ? " " : "") + (isQuoted ? inQuotes(value) : escaped(value));
    }
    return result;
}

std::string valueJson(const Member& member, const Handle& handle, const MemberPart& part)
{
    if (part.count == handle.dataLength())
        return vumo::codec::valuesJson(member, handle);
    const vumo::Ref<Structure> alone = Structure::make("value", {{handle.dataType(), 1, "value"}});
    Handle value(*alone);
    std::string errors;
    value.fromStr(handle.str(part.first, kExact), 0, errors);
    return vumo::codec::valuesJson(*alone->member(0), value);
}
