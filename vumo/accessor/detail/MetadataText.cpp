#include "vumo/accessor/detail/MetadataText.h"

#include "vumo/accessor/AccessorOvri.h"
#include "vumo/foundation/Ref.h"
#include "vumo/foundation/detail/MemoryInput.h"
#include "vumo/foundation/detail/Quoted.h"
#include "vumo/foundation/detail/StringOutput.h"
#include "vumo/serialize/AssociationsSerializer.h"
#include "vumo/serialize/StructureSerializer.h"
#include "vumo/serialize/detail/StructureFault.h"

#include <memory>
#include <utility>

namespace vumo::Data::detail
{
namespace
{
/// The object that `text` describes in the format of that name; null, with the reason appended to `errors`.
template <class Serializer>
auto deserialize(std::string_view formatName, std::string_view text, std::string& errors)
    -> decltype(Serializer::formatByName("")->read(std::declval<std::istream&>(), errors))
{
    const std::string format(formatName);
    const Serializer* const serializer = Serializer::formatByName(format);
    if (!serializer)
    {
        errors += "Could not find serializer for format " + format;
        return nullptr;
    }
    MemoryInput in(text);
    std::string ownErrors; // a serializer may clear the text that it is given
    auto* object = serializer->read(in, ownErrors);
    errors += ownErrors;
    return object;
}
} // namespace

bool serializeStructure(const Structure& structure, std::string& text, std::string& errors)
{
    const StructureSerializer* const serializer = StructureSerializer::formatByName(kFormatWritten);
    const std::string::size_type begin = text.size();
    StringOutput out(text);
    if (!serializer || serializer->write(structure, out) != 0 || !out)
        return false;
    // Names that the format cannot carry give no error when they are written, but another structure when they are read.
    MemoryInput in(std::string_view(text).substr(begin));
    std::string fault;
    const Ref<const Structure> readBack(serializer->read(in, fault));
    if (readBack && *readBack == structure)
        return true;
    const std::string known = structureFault(structure);
    errors += structureMessage(structure, known.empty() ? "its text gives another one or none" : known);
    return false;
}

bool serializeAssociations(const Associations& associations, eNumbers numbers, std::string& text, std::string& errors)
{
    const AssociationsSerializer* const serializer = AssociationsSerializer::formatByName(kFormatWritten);
    if (!serializer)
        return false;
    StringOutput out(text);
    if (numbers == kExact)
        out << exactNumbers;
    std::string ownErrors;
    const bool isWritten = serializer->write(associations, out, ownErrors) == 0 && out;
    errors += ownErrors;
    return isWritten;
}

std::string structureMessage(const Structure& structure, const std::string& fault)
{
    return "Structure " + quoted(structure.name()) + " cannot be written: " + fault + ".\n";
}

std::string nodeText(const std::string& nodeName)
{
    return nodeName == AccessorOvri::getSceneAssociationsName() ? "the scene" : "node " + quoted(nodeName);
}

std::string placedMessages(const std::string& messages, const std::string& what, std::uint64_t position,
                           const std::string& fileName)
{
    const bool endsLine = !messages.empty() && messages.back() == '\n';
    return messages + (endsLine ? "" : "\n") + "in " + what + ", from byte " + std::to_string(position) + " of " +
           fileName + "\n";
}

std::string messagesOf(const std::string& nodeName, const std::string& messages)
{
    if (messages.empty())
        return "";
    return "The metadata of " + nodeText(nodeName) + " cannot be written:\n" + messages;
}

Structure* deserializeStructure(std::string_view format, std::string_view text, std::string& errors)
{
    return deserialize<StructureSerializer>(format, text, errors);
}

bool deserializeAssociations(std::string_view format, std::string_view text, Associations& result, std::string& errors)
{
    // Into a new object first: a text that is faulty at its end must not leave half of it in the result.
    const std::unique_ptr<Associations> associations(deserialize<AssociationsSerializer>(format, text, errors));
    if (!associations)
        return false;
    result = *associations;
    return true;
}
} // namespace vumo::Data::detail
