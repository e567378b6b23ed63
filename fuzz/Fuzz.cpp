#include "fuzz/Fuzz.h"

#include "vumo/data/Structure.h"
#include "vumo/serialize/AssociationsSerializer.h"

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <vector>

namespace vumo::fuzz
{
namespace
{
void registerStructure(const char* name, const std::vector<Data::Structure::NewMember>& members)
{
    Data::Structure* const structure = Data::Structure::create();
    structure->setName(name);
    structure->addMembers(members);
    require(Data::Structure::registerStructure(*structure), "a sample structure is refused");
}

/// As in the golden sample of all types.
unsigned int dimensionOf(Data::Member::eDataType type)
{
    switch (type)
    {
    case Data::Member::kFloat:
        return 3;
    case Data::Member::kDouble:
    case Data::Member::kString:
        return 2;
    default:
        return 1;
    }
}

/// Those of the golden samples, an empty one, and one that promises more than any line could hold.
void registerAll()
{
    using Data::Member;
    registerStructure("Empty", {});
    registerStructure("Endless", {{Member::kDoubleMatrix4x4, 4294967295U, "matrix"}});
    registerStructure("Label", {{Member::kString, 1, "text"}});
    registerStructure("Weight", {{Member::kFloat, 1, "weight"}});
    registerStructure("Bone", {{Member::kFloat, 1, "w"}, {Member::kString, 1, "s"}, {Member::kBoolean, 1, "b"}});
    std::vector<Data::Structure::NewMember> members;
    for (unsigned int type = 0; type < Member::kInvalidType; ++type)
    {
        const auto dataType = static_cast<Member::eDataType>(type);
        members.push_back({dataType, dimensionOf(dataType), Member::typeName(dataType)});
    }
    registerStructure("AllTypes", members);
}

/// The registry keeps its structures when the program ends: who put them there takes them out.
struct RegisteredStructures
{
    RegisteredStructures() { registerAll(); }
    ~RegisteredStructures() { Data::Structure::deleteAllStructures(); }
};
} // namespace

void require(bool condition, const std::string& message)
{
    if (condition)
        return;
    std::cerr << "FAULT: " << message << std::endl;
    std::abort();
}

void registerStructures()
{
    static const RegisteredStructures theStructures;
}

bool textOf(const Data::Associations& associations, std::string& text, Data::eNumbers numbers)
{
    std::ostringstream out;
    if (numbers == Data::kExact)
        out << Data::exactNumbers;
    std::string errors;
    const bool isGood = Data::AssociationsSerializer::formatByName("raw")->write(associations, out, errors) == 0;
    text = out.str();
    return isGood;
}
} // namespace vumo::fuzz
