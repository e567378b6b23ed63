#include "vumo/serialize/StructureSerializerRaw.h"

#include "vumo/serialize/detail/FormatInstance.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <locale>
#include <memory>
#include <sstream>
#include <vector>

namespace vumo::Data
{
namespace
{
constexpr char kDescriptionHead[] = "\n"
                                    "The raw format consists of a series of colon or\n"
                                    "newline separated fields. The first field  must\n"
                                    "be the name field,  indicating  the name of the\n"
                                    "structure:\n"
                                    "\n"
                                    "    name=NAME\n"
                                    "\n"
                                    "After that  is one  or more  member fields, one\n"
                                    "for each member of the structure:\n"
                                    "\n"
                                    "    TYPE[DIM]=TYPENAME\n"
                                    "\n"
                                    "TYPE is one  of the valid  data structure types\n"
                                    "taken from vumo::Data::Structure:\n"
                                    "\n"
                                    "    (";
constexpr char kDescriptionTail[] = ")\n"
                                    "\n"
                                    "\n"
                                    "[DIM] is an optional suffix denoting the length\n"
                                    "of the data  member  type with a  default of 1.\n"
                                    "e.g. a float[3] is a data  member consisting of\n"
                                    "3 float values.\n"
                                    "\n"
                                    "TYPENAME is the unique string defining the name\n"
                                    "of each member type. It is an error to have the\n"
                                    "same 'TYPENAME' more than once in a structure.\n"
                                    "\n"
                                    "Any extra newlines/whitespace will be ignored.\n"
                                    "Member names and the  structure  name may only\n"
                                    "have  internal  whitespace.  (e.g. the  member\n"
                                    "name 'My Height' is  legal but neither of  the\n"
                                    "names ' My Height' or 'My Height ' are)\n"
                                    "\n"
                                    "Either  newlines  or  colons  may  be  used to\n"
                                    "separate  member  definitions. These two forms\n"
                                    "both represent the same structure:\n"
                                    "\n"
                                    "    name=My Structure:int32=ID:float[3]=Origin\n"
                                    "and\n"
                                    "    name=My Structure\n"
                                    "    int32=ID\n"
                                    "    float[3]=Origin";

/// No process is given a block of so many bytes. The sizes of members, each below 2^40, do not wrap before that.
constexpr unsigned long long kTooLarge = 1ULL << 48U;

/// Appends to a list that is one text: a short text can have very many faults, and each as an object of its own would
/// take many times the memory.
void append(const char* separator, const std::string& text, std::string& list)
{
    if (!list.empty())
        list += separator;
    list += text;
}

void addMessage(const std::string& message, std::string& messages)
{
    append("\n", message, messages);
}

/// Reads a dimension, and nothing else; 0 when the text is none.
unsigned int parseDimension(const std::string& text)
{
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    std::int64_t dimension = 0; // wide enough to see a sign and what is too large
    if (!(in >> dimension) || dimension < 0 || dimension > std::numeric_limits<std::uint32_t>::max())
        return 0;
    const bool isAlone = in.eof() || (in >> std::ws).eof();
    return isAlone ? static_cast<unsigned int>(dimension) : 0;
}

/// Splits "float[3]" into type name and length; returns what is wrong with it or an empty text.
std::string splitType(const std::string& text, std::string& typeName, unsigned int& length)
{
    const std::string::size_type open = text.find('[');
    const std::string::size_type close = text.rfind(']');
    const bool hasOpen = open != std::string::npos;
    const bool hasClose = close != std::string::npos;
    typeName = text.substr(0, open);
    length = 1;
    if (open == 0)
        return "needs name before dimension specifier";
    if (hasOpen && !hasClose)
        return "has opening bracket '[' but no closing bracket ']' for dimension specification";
    if (!hasOpen && hasClose)
        return "has closing bracket ']' but no opening bracket '[' for dimension specification";
    if (!hasOpen)
        return "";
    const bool isAtEnd = open < close && close + 1 == text.size(); // not "]3[", and no text after the bracket
    length = isAtEnd ? parseDimension(text.substr(open + 1, close - open - 1)) : 0;
    return length == 0 ? "needs numeric value for dimension specifier" : "";
}

/// What the fields say, until the structure is made of it at once.
struct Declaration
{
    struct Member
    {
        vumo::Data::Member::eDataType type;
        unsigned int length;
        std::string name;
    };

    bool hasName = false;
    std::string name;
    std::vector<Member> members;
    unsigned long long size = 0; // of an element in bytes, without gaps; not counted on once it is too large
};

void addMember(const std::string& typeText, const std::string& name, Declaration& declaration, std::string& messages)
{
    std::string typeName;
    unsigned int length = 0;
    const std::string fault = splitType(typeText, typeName, length);
    if (!fault.empty())
    {
        addMessage("Member '" + typeText + "' " + fault, messages);
        return;
    }
    const Member::eDataType type = Member::typeFromName(typeName.c_str());
    if (type == Member::kInvalidType)
    {
        addMessage("Member type '" + typeText + "' not recognized", messages);
        return;
    }
    declaration.members.push_back({type, length, name});
    if (declaration.size < kTooLarge)
        declaration.size += static_cast<unsigned long long>(Member::typeSize(type)) * length;
}

/// Reads to the end of the input; false when it breaks before.
bool readRest(std::istream& in, std::string& text)
{
    constexpr std::streamsize kBlockSize = 4096;
    char block[kBlockSize];
    std::istream bytes(in.rdbuf()); // one of its own: the end is no failure of the caller's input
    bytes.setstate(in.rdstate());
    while (bytes.read(block, kBlockSize) || bytes.gcount() > 0)
        text.append(block, static_cast<std::string::size_type>(bytes.gcount()));
    return !bytes.bad();
}

std::vector<std::string> splitFields(std::string& text)
{
    const char separator = *SerializerRaw::keyword(SerializerRaw::kFieldSeparator);
    std::vector<std::string> fields;
    SerializerRaw::collapseWhitespace(text);
    SerializerRaw::standardizeSeparators(text);
    // A text of many members is split once; a list that grows would be in memory twice for a moment.
    fields.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), separator)) + 1);
    return SerializerRaw::splitString(text, separator, fields);
}

void readField(std::string field, Declaration& declaration, std::string& messages)
{
    const char* const separator = SerializerRaw::keyword(SerializerRaw::kTypeSeparator);
    std::vector<std::string> pieces;
    SerializerRaw::collapseWhitespace(field);
    SerializerRaw::splitString(field, *separator, pieces);
    if (pieces.size() != 2 || field.back() == *separator) // splitString() gives no piece for what follows the last one
    {
        addMessage(std::string("Member type and name must be separated by '") + separator + "'", messages);
        return;
    }
    const std::string type = SerializerRaw::collapseWhitespace(pieces[0]);
    const std::string name = SerializerRaw::collapseWhitespace(pieces[1]);
    if (type != SerializerRaw::keyword(SerializerRaw::kStructureName))
    {
        addMember(type, name, declaration, messages);
        return;
    }
    declaration.hasName = true;
    declaration.name = name;
}

/// A new structure, held by nobody.
Structure* newStructure(const Declaration& declaration)
{
    std::vector<Structure::NewMember> members;
    for (const Declaration::Member& member : declaration.members)
        members.push_back({member.type, member.length, member.name.c_str()});
    // All members at once: the layout is computed with each call, and a text may declare very many.
    auto structure = std::make_unique<Structure>(declaration.name.c_str());
    structure->addMembers(members);
    return structure.release();
}
} // namespace

std::atomic<StructureSerializerRaw*> StructureSerializerRaw::theInstance = nullptr;

StructureSerializerRaw* StructureSerializerRaw::theFormat()
{
    return detail::theOnly(theInstance);
}

StructureSerializerRaw::StructureSerializerRaw()
{
    setDefaultFormat(this);
}

const char* StructureSerializerRaw::formatType() const
{
    return keyword(kFormatName);
}

StructureSerializerRaw::~StructureSerializerRaw() = default;

Structure* StructureSerializerRaw::read(std::istream& in, std::string& errors) const
{
    errors.clear();
    std::string text;
    if (!readRest(in, text))
    {
        errors = "Error in stream while reading";
        return nullptr;
    }
    const std::vector<std::string> fields = splitFields(text);
    if (fields.size() < 2)
    {
        errors = "Structures must have a name and at least one member";
        return nullptr;
    }
    if (text.find('\0') != std::string::npos)
    {
        errors = "Structures must not have a zero byte, where a name would end";
        return nullptr;
    }

    Declaration declaration;
    for (const std::string& field : fields)
        readField(field, declaration, errors);
    if (!declaration.hasName)
        addMessage(std::string("Name is missing; member type '") + keyword(kStructureName) + "' is used to set it",
                   errors);
    if (declaration.size >= kTooLarge)
        addMessage("Structures must have elements of less than " + std::to_string(kTooLarge) + " bytes", errors);
    return errors.empty() ? newStructure(declaration) : nullptr;
}

int StructureSerializerRaw::write(const Structure& structure, std::ostream& out) const
{
    std::string text = std::string(keyword(kStructureName)) + keyword(kTypeSeparator) + structure.name();
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        const Member* const member = structure.member(i); // an iterator would delete a structure that nobody holds
        const char* const name = Member::name(member);
        text += keyword(kFieldSeparator);
        text += Member::typeName(Member::type(member));
        if (Member::length(member) != 1)
            text += "[" + std::to_string(Member::length(member)) + "]";
        text += keyword(kTypeSeparator);
        text += name ? name : "";
    }
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    return 0;
}

std::ostream& StructureSerializerRaw::getFormatDescription(std::ostream& out) const
{
    std::string typeNames;
    for (unsigned int type = 0; type < Member::kInvalidType; ++type)
        append(", ", Member::typeName(static_cast<Member::eDataType>(type)), typeNames);
    return out << kDescriptionHead << typeNames << kDescriptionTail;
}

bool StructureSerializerRaw::Debug(const StructureSerializerRaw* object, vumo::Debug::Print& request)
{
    return detail::debugFormat("vumo::Data::StructureSerializerRaw", object, theInstance, request);
}

bool StructureSerializerRaw::Debug(const StructureSerializerRaw* object, vumo::Debug::Footprint& request)
{
    return detail::debugFormat(object, theInstance, request);
}
} // namespace vumo::Data
