#include "vumo/serialize/detail/StructureFault.h"

#include "vumo/foundation/detail/Quoted.h"
#include "vumo/serialize/SerializerRaw.h"
#include "vumo/serialize/detail/ReadBack.h"

#include <string_view>

namespace vumo::Data::detail
{
namespace
{
/// Says what is wrong with a name between the separators of the format; empty when nothing is.
std::string fieldFault(std::string_view name)
{
    if (name.empty())
        return "it is empty";
    if (const char* const fault = nameFault(name))
        return fault;
    for (const SerializerRaw::eKeyword separator : {SerializerRaw::kFieldSeparator, SerializerRaw::kTypeSeparator})
    {
        if (name.find(SerializerRaw::keyword(separator)) != std::string_view::npos)
            return "it has a " + quoted(SerializerRaw::keyword(separator));
    }
    return "";
}
} // namespace

std::string structureFault(const Structure& structure)
{
    std::string fault = fieldFault(structure.name());
    if (!fault.empty())
        return "its name cannot stand in a text: " + fault;
    if (structure.memberCount() == 0)
        return "it has no members";
    for (unsigned int i = 0; i < structure.memberCount(); ++i)
    {
        const Member* const member = structure.member(i);
        const std::string name = Member::name(member);
        fault = fieldFault(name);
        if (!fault.empty())
            return "the name of its member " + quoted(name) + " cannot stand in a text: " + fault;
        if (Member::type(member) >= Member::kInvalidType)
            return "its member " + quoted(name) + " has no data type";
    }
    return "";
}
} // namespace vumo::Data::detail
