#include "Commands.h"
#include "Elements.h"
#include "Failure.h"
#include "SceneFile.h"
#include "Text.h"

#include <locale>
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

std::vector<std::string> words(const std::string& text)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    std::vector<std::string> result;
    for (std::string word; in >> word;)
        result.push_back(word);
    return result;
}

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

/// Text conversion reads as far as it can; a word that goes on behind its number is a slip of the user's.
bool isWholeNumber(const std::string& word, Member::eDataType type)
{
    const bool isReal = type == Member::kDouble || type == Member::kFloat || type == Member::kDoubleMatrix4x4 ||
                        type == Member::kFloatMatrix4x4;
    if (type == Member::kBoolean)
        return true;
    const bool isUnsigned = type >= Member::kUInt8 && type <= Member::kUInt64; // reading would wrap a negative number
    const char* const allowed = isReal ? "0123456789+-.eE" : isUnsigned ? "0123456789+" : "0123456789+-";
    if (word.find_first_not_of(allowed) != std::string::npos)
        return false;
    std::istringstream in(word);
    in.imbue(std::locale::classic());
    double number = 0;
    in >> number;
    return in.eof();
}

void storeValue(const SceneFile& scene, const std::string& member, const std::string& text, unsigned int i,
                Handle& element)
{
    std::string errors;
    if (element.fromStr(text, i, errors) > 0)
        throw scene.failure("member " + quoted(member) + ": " + errors);
}

void assign(const SceneFile& scene, const std::string& text, Handle& element)
{
    const Assignment assignment = resolve(scene, text, element);
    const Member::eDataType type = element.dataType();
    if (type == Member::kString && assignment.count == 1)
    {
        storeValue(scene, assignment.member, assignment.value, assignment.first, element);
        return;
    }
    if (type == Member::kString)
        throw WrongUsage("set the strings of " + quoted(assignment.member) + " one by one, as MEMBER[i]=VALUE");

    const bool isMatrix = type == Member::kDoubleMatrix4x4 || type == Member::kFloatMatrix4x4;
    const std::size_t wordsPerValue = isMatrix ? 16 : 1;
    const std::vector<std::string> given = words(assignment.value);
    if (given.size() != wordsPerValue * assignment.count)
        throw scene.failure("member " + quoted(assignment.member) + " takes " +
                            std::to_string(wordsPerValue * assignment.count) + " values here, not " +
                            std::to_string(given.size()));
    for (std::size_t i = 0; i < given.size(); i += wordsPerValue)
    {
        std::string value;
        for (std::size_t word = i; word < i + wordsPerValue; ++word)
        {
            if (!isWholeNumber(given[word], type))
                throw scene.failure(quoted(given[word]) + " is not a value for member " + quoted(assignment.member));
            value += given[word] + " ";
        }
        storeValue(scene, assignment.member, value, assignment.first + static_cast<unsigned int>(i / wordsPerValue),
                   element);
    }
}
} // namespace

void set(const std::string& fileName, const Address& address, const std::string& index,
         const std::vector<std::string>& assignments, bool add)
{
    SceneFile scene(fileName, SceneFile::kEdit);
    Stream& stream = scene.stream(address);
    const Index where = indexFrom(scene, stream, index);
    if (add && !stream.hasElement(where))
        stream.setElement(where, Handle(stream.structure()));
    Handle element = elementAt(scene, stream, index);
    for (const std::string& assignment : assignments)
        assign(scene, assignment, element);
    scene.write();
}
