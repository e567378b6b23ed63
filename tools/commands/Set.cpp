#include "commands/Commands.h"
#include "core/Batch.h"
#include "core/Elements.h"
#include "core/Text.h"
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

/// Moves the element to the member that the assignment names, and says which of its values are meant.
Assignment resolve(const SceneFile& scene, const Stream& stream, const std::string& text, Handle& element)
{
    const std::string::size_type separator = text.find('=');
    if (separator == std::string::npos || separator == 0)
        throw Failure(kWrongUsage, inQuotes(text) + " is not of the form MEMBER=VALUE");
    const std::string name = text.substr(0, separator);
    const MemberPart part = findMember(scene, stream, name, element);
    return {name, text.substr(separator + 1), part.first, part.count};
}

/// Stores the text in one string, as it stands.
void assignString(const SceneFile& scene, const Assignment& assignment, Handle& element)
{
    if (assignment.count != 1)
        throw Failure(kWrongUsage,
                      "set the strings of " + inQuotes(assignment.member) + " one by one, as MEMBER[i]=VALUE");
    std::string errors;
    if (element.fromStr(assignment.value, assignment.first, errors) > 0)
        throw scene.failure(kNotWritten, "member " + inQuotes(assignment.member) + ": " + errors);
}

/// What is wrong with the text as that many values; empty when they were read into `values`, which has no others.
std::string readValues(const std::string& text, Handle& values)
{
    const Member::eDataType type = values.dataType();
    const bool isUnsigned = type >= Member::kUInt8 && type <= Member::kUInt64;
    if (isUnsigned && text.find('-') != std::string::npos) // scene files let negative numbers wrap around
        return inQuotes(text) + " is negative";
    std::istringstream in(text);
    std::string errors;
    if (StreamSerializerRaw::theFormat()->readMember(in, 1, values, errors) > 0)
        return errors;
    std::string rest;
    return in >> rest ? inQuotes(rest) + " is left over" : "";
}

/// Reads all values before it stores any: the library's reader knows whole members only.
void assignValues(const SceneFile& scene, const Assignment& assignment, Handle& element)
{
    const Member::eDataType type = element.dataType();
    const vumo::Ref<Structure> alone = Structure::make("value", {{type, assignment.count, "value"}});
    Handle values(*alone);
    const std::string fault = readValues(assignment.value, values);
    if (!fault.empty())
        throw scene.failure(kNotWritten, "member " + inQuotes(assignment.member) + " takes " +
                                             std::to_string(assignment.count) + " " + Member::typeName(type) +
                                             (assignment.count == 1 ? " value: " : " values: ") + fault);
    const std::size_t size = Member::typeSize(type);
    std::memcpy(static_cast<char*>(element.asType(type)) + assignment.first * size, values.asType(type),
                assignment.count * size);
}

void assign(const SceneFile& scene, const Stream& stream, const std::string& text, Handle& element)
{
    const Assignment assignment = resolve(scene, stream, text, element);
    if (element.dataType() == Member::kString)
        assignString(scene, assignment, element);
    else
        assignValues(scene, assignment, element);
}

eExitCode set(Job& job, bool add)
{
    const std::vector<std::string> words = job.session.words();
    const Address address({words.begin(), words.begin() + 4});
    SceneFile scene(job.session, job.file, SceneFile::kEdit);
    scene.readNode(address.node);
    Stream& stream = scene.stream(address);
    const Index where = indexFrom(scene, stream, *address.index);
    if (add && !stream.hasElement(where))
        stream.setElement(where, Handle(stream.structure()));
    Handle element = elementAt(scene, stream, *address.index);
    for (std::size_t i = 4; i < words.size(); ++i)
        assign(scene, stream, words[i], element);
    scene.write();
    return kDone;
}
} // namespace

void addSet(Session& session)
{
    CLI::App& command = session.addCommand("set", "Change values of one element");
    std::vector<Word> words(Session::kAddress.begin(), Session::kAddress.end() - 1);
    words.push_back({"MEMBER=VALUE...", "a member's values, separated by blanks; MEMBER[i]=VALUE for one of them"});
    session.addFileAndWords(command, words, words.size());
    const auto add = std::make_shared<bool>(false);
    command.add_flag("--add", *add, "add the element if there is none");
    session.setWork(command,
                    [&session, add] { return forEachFile(session, [add](Job& job) { return set(job, *add); }); });
}
