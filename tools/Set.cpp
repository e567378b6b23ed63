#include "Commands.h"
#include "Elements.h"
#include "Failure.h"
#include "SceneFile.h"
#include "Text.h"
#include "vumo/foundation/Ref.h"
#include "vumo/serialize/StreamSerializerRaw.h"

#include <cstring>
#include <sstream>

using namespace vumo::Data;

namespace
{
/// What a MEMBER=VALUE or MEMBER[i]=VALUE asks for.
struct Assignment
{
    std::string member;
    std::string value;
    unsigned int first; ///< the range of the member's values that it is about
    unsigned int count;
};

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

/// Moves the handle to the member that the assignment names, and says which of its values are meant. A member
/// whose very name looks like one with an index goes first.
Assignment resolve(const SceneFile& scene, const std::string& text, Handle& element)
{
    const std::string::size_type separator = text.find('=');
    if (separator == std::string::npos || separator == 0)
        throw WrongUsage(quoted(text) + " is not of the form MEMBER=VALUE");
    const std::string name = text.substr(0, separator);
    const std::string value = text.substr(separator + 1);
    if (element.setPositionByMemberName(name.c_str()))
        return {name, value, 0, element.dataLength()};

    std::string plainName;
    unsigned int i = 0;
    if (!splitIndex(name, plainName, i) || !element.setPositionByMemberName(plainName.c_str()))
        throw scene.failure("there is no member " + quoted(name));
    if (i >= element.dataLength())
        throw scene.failure("member " + quoted(plainName) + " has no value [" + std::to_string(i) + "]");
    return {plainName, value, i, 1};
}

/// Stores the text in one string, as it stands.
void assignString(const SceneFile& scene, const Assignment& assignment, Handle& element)
{
    if (assignment.count != 1)
        throw WrongUsage("set the strings of " + quoted(assignment.member) + " one by one, as MEMBER[i]=VALUE");
    std::string errors;
    if (element.fromStr(assignment.value, assignment.first, errors) > 0)
        throw scene.failure("member " + quoted(assignment.member) + ": " + errors);
}

/// What is wrong with the text as that many values; empty when they were read into `values`, which has no others.
std::string readValues(const std::string& text, Handle& values)
{
    const Member::eDataType type = values.dataType();
    const bool isUnsigned = type >= Member::kUInt8 && type <= Member::kUInt64;
    if (isUnsigned && text.find('-') != std::string::npos) // scene files let negative numbers wrap around
        return quoted(text) + " is negative";
    std::istringstream in(text);
    std::string errors;
    if (StreamSerializerRaw::theFormat()->readMember(in, 1, values, errors) > 0)
        return errors;
    std::string rest;
    return in >> rest ? quoted(rest) + " is left over" : "";
}

/// Reads all values before it stores any: the library's reader knows whole members only.
void assignValues(const SceneFile& scene, const Assignment& assignment, Handle& element)
{
    const Member::eDataType type = element.dataType();
    const vumo::Ref<Structure> alone = Structure::make("value", {{type, assignment.count, "value"}});
    Handle values(*alone);
    const std::string fault = readValues(assignment.value, values);
    if (!fault.empty())
        throw scene.failure("member " + quoted(assignment.member) + " takes " + std::to_string(assignment.count) + " " +
                            Member::typeName(type) + (assignment.count == 1 ? " value: " : " values: ") + fault);
    const std::size_t size = Member::typeSize(type);
    std::memcpy(static_cast<char*>(element.asType(type)) + assignment.first * size, values.asType(type),
                assignment.count * size);
}

void assign(const SceneFile& scene, const std::string& text, Handle& element)
{
    const Assignment assignment = resolve(scene, text, element);
    if (element.dataType() == Member::kString)
        assignString(scene, assignment, element);
    else
        assignValues(scene, assignment, element);
}
} // namespace

void set(const std::string& fileName, const Address& address, const std::string& index,
         const std::vector<std::string>& assignments, bool add, eNumbers numbers)
{
    SceneFile scene(fileName, SceneFile::kEdit, &address.node);
    Stream& stream = scene.stream(address);
    const Index where = indexFrom(scene, stream, index);
    if (add && !stream.hasElement(where))
        stream.setElement(where, Handle(stream.structure()));
    Handle element = elementAt(scene, stream, index);
    for (const std::string& assignment : assignments)
        assign(scene, assignment, element);
    scene.write(numbers);
}
