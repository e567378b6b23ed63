#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Numbers.h"
#include "vumo/data/Structure.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace vumo::Data::detail
{
/// The format of all texts that are written into scene files.
constexpr char kFormatWritten[] = "raw";

/// Appends the text of a structure. False when there is none, or one that does not read back as an equal structure,
/// with the reason appended to `errors`: the file could not be read again.
bool serializeStructure(const Structure& structure, std::string& text, std::string& errors);

/// Appends the text of associations, with such numbers. False, with the serializer's messages appended to `errors`,
/// when there is none.
bool serializeAssociations(const Associations& associations, eNumbers numbers, std::string& text, std::string& errors);

/// What is wrong with the structure, as a line of a message.
std::string structureMessage(const Structure& structure, const std::string& fault);

/// What a message calls the node of that name, or the scene.
std::string nodeText(const std::string& nodeName);

/// The messages about a piece of a file, each on a line of its own, with a line that says where it stands.
std::string placedMessages(const std::string& messages, const std::string& what, std::uint64_t position,
                           const std::string& fileName);

/// The messages about the metadata of a node, or of the scene, headed by its name; empty when there are none.
std::string messagesOf(const std::string& nodeName, const std::string& messages);

/// The structure that the text declares in the format of that name: a new one, held by nobody. Null, with the reason
/// appended to `errors`, when there is no such format or the text is faulty.
Structure* deserializeStructure(std::string_view format, std::string_view text, std::string& errors);

/// Makes `result` what the text says in the format of that name. False, with the reason appended to `errors` and
/// `result` left alone, when there is no such format or the text is faulty.
bool deserializeAssociations(std::string_view format, std::string_view text, Associations& result, std::string& errors);
} // namespace vumo::Data::detail
