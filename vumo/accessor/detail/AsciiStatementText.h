#pragma once

#include "vumo/data/Associations.h"
#include "vumo/data/Structure.h"

#include <string>

namespace vumo::Data::detail
{
/// The texts of metadata statements in ASCII scene files: how they are written, and how they are taken apart.

/// A serialized object and the name of the format that wrote it.
struct FormattedValue
{
    std::string format;
    std::string value;
};

/// Takes the format from between the first two double quotes of a statement, and the value, unescaped, from between
/// the third and the last. False when there are too few of them, or when another statement follows on the line.
bool parseValue(std::string&& statement, FormattedValue& result);

/// Cuts the last line, with the node's name, off an associations statement that has lost its ";". The name stands
/// between double quotes, or is all that follows the leading blanks. The name of the scene is the scene associations
/// name. False when there is no name, or another statement after it.
bool takeName(std::string& statement, std::string& name);

/// Appends the statement that declares the structure. False, with the reason appended to `errors`, when it has no text,
/// or one that would not stay inside its quotes.
bool appendStructure(const Structure& structure, std::string& out, std::string& errors);

/// Appends the statement that applies the associations to the node of that name, or to the scene. Appends nothing for
/// empty ones. False, with the reasons appended to `errors`, when they cannot be written, or when the name would not be
/// read back or could be taken for something else.
bool appendAssociations(const std::string& nodeName, const Associations& associations, std::string& out,
                        std::string& errors);
} // namespace vumo::Data::detail
