#include "edit/Assignment.h"

#include "core/Elements.h"
#include "core/Text.h"
#include "tools/codec/CodecError.h"
#include "tools/codec/Values.h"

#include <iterator>
#include <sstream>
#include <vector>

using namespace vumo::Data;
using namespace vumo::codec;

namespace
{
std::vector<std::string> wordsOf(const std::string& text)
{
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

void setString(const std::string& value, const MemberPart& part, Handle& element)
{
    if (part.count != 1)
        throw CodecError("its strings are set one by one, as MEMBER[i]=VALUE");
    setValue(element, part.first, value);
}

void setNumbers(const std::string& value, const MemberPart& part, const Member& member, Handle& element)
{
    const std::uint64_t width = valueCount(member) / Member::length(&member); // 16 for matrices
    const std::vector<std::string> values = wordsOf(value);
    const std::uint64_t count = part.count * width;
    if (values.size() != count)
        throw CodecError("it takes " + std::to_string(count) + (count == 1 ? " value" : " values") + ", not " +
                         std::to_string(values.size()));
    for (std::uint64_t i = 0; i < count; ++i)
        setValue(element, static_cast<unsigned int>(part.first * width + i), values[i]);
}
} // namespace

void assign(const SceneFile& scene, const Stream& stream, const std::string& text, Handle& element)
{
    const std::string::size_type separator = text.find('=');
    if (separator == std::string::npos || separator == 0)
        throw Failure(kWrongUsage, inQuotes(text) + " is not of the form MEMBER=VALUE");
    const std::string name = text.substr(0, separator);
    const std::string value = text.substr(separator + 1);
    const MemberPart part = findMember(scene, stream, name, element);
    try
    {
        if (element.dataType() == Member::kString)
            setString(value, part, element);
        else
            setNumbers(value, part, *stream.structure().member(element.memberIndex()), element);
    }
    catch (const CodecError& error)
    {
        throw WrongForFile(scene.failure(kWrongUsage, "member " + inQuotes(name) + ": " + error.what()).what());
    }
}

std::vector<std::string> assignmentsOf(const Member& member, const Handle& element)
{
    const std::string name = Member::name(&member);
    std::vector<std::string> texts;
    if (element.dataType() == Member::kString)
    {
        const bool isOne = Member::length(&member) == 1;
        for (unsigned int i = 0; i < Member::length(&member); ++i)
            texts.push_back(name + (isOne ? "=" : "[" + std::to_string(i) + "]=") + element.str(i));
        return texts;
    }
    std::string values;
    for (const std::string& value : numberTexts(element))
        values += (values.empty() ? "" : " ") + value;
    return {name + "=" + values};
}
