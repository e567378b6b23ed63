#include "vumo/accessor/Accessor.h"
#include "vumo/accessor/AccessorOvri.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace vumo::Data
{
namespace
{
using ExternalContent = AccessorOvri::ExternalContent;

/// The value of one member, as text.
struct Field
{
    const std::string& member;
    std::string text;
};

std::string packRoles(const std::set<std::string>& roles)
{
    std::string packed;
    for (const std::string& role : roles)
    {
        if (!packed.empty())
            packed += ExternalContent::getRolesSeparator();
        for (const char character : role)
        {
            if (character == '-')
                packed += "--";
            else if (character == ';')
                packed += "-*";
            else
                packed += character;
        }
    }
    return packed;
}

std::string unescapeRole(const std::string& text)
{
    std::string role;
    for (std::string::size_type i = 0; i < text.size(); ++i)
    {
        // A "-" that begins no escape stays: packing makes none, but others may write the table.
        const char next = text[i] == '-' && i + 1 < text.size() ? text[i + 1] : '\0';
        const bool isEscape = next == '-' || next == '*';
        role += isEscape && next == '*' ? ';' : text[i];
        if (isEscape)
            ++i;
    }
    return role;
}

void unpackRoles(const std::string& packed, std::set<std::string>& roles)
{
    std::string::size_type begin = 0;
    while (begin < packed.size())
    {
        const std::string::size_type end =
            std::min(packed.find(ExternalContent::getRolesSeparator(), begin), packed.size());
        if (end > begin)
            roles.insert(unescapeRole(packed.substr(begin, end - begin)));
        begin = end + 1;
    }
}

/// The text of a member's first value, empty when there is none.
bool readMember(Handle& handle, const std::string& member, std::string& text)
{
    const bool isFound = handle.setPositionByMemberName(member.c_str()) && handle.hasData();
    text = handle.str(0);
    return isFound;
}

bool storeFields(Handle& handle, const std::vector<Field>& fields)
{
    std::string errors;
    for (const Field& field : fields)
    {
        handle.setPositionByMemberName(field.member.c_str());
        handle.fromStr(field.text, 0, errors);
    }
    return errors.empty();
}

/// Writes all fields, or none of them when one cannot be written.
bool writeFields(Handle& handle, const std::vector<Field>& fields)
{
    Handle trial(handle); // a copy of the element, on which a text that does not fit does no harm
    trial.makeUnique();
    return storeFields(trial, fields) && storeFields(handle, fields);
}

bool hasStructure(const Accessor& accessor, const std::string& name)
{
    return std::any_of(accessor.structures().begin(), accessor.structures().end(),
                       [&](const Structure* structure) { return structure->name() == name; });
}
} // namespace

const std::string& AccessorOvri::ExternalContent::getChannelName()
{
    static const std::string theName = "externalContentTable";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getStreamName()
{
    static const std::string theName = "v1.0";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getStructureName()
{
    return getChannelName();
}

const std::string& AccessorOvri::ExternalContent::getNodeMemberName()
{
    static const std::string theName = "node";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getKeyMemberName()
{
    static const std::string theName = "key";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getUnresolvedPathMemberName()
{
    static const std::string theName = "upath";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getResolvedPathMemberName()
{
    static const std::string theName = "rpath";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getRolesMemberName()
{
    static const std::string theName = "roles";
    return theName;
}

const std::string& AccessorOvri::ExternalContent::getRolesSeparator()
{
    static const std::string theSeparator = ";";
    return theSeparator;
}

bool AccessorOvri::ExternalContent::readTable(const std::string& fileName, Associations& result, std::string& errors)
{
    const std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(fileName);
    if (!accessor)
    {
        errors += "No accessor found for type of file \"" + fileName + "\"";
        return false;
    }
    const std::set<std::string> structures = {getStructureName()};
    const std::set<std::string> associations = {getSceneAssociationsName()};
    std::string ignored; // the second read says what is wrong with the file
    // Where the scene has other channels beside the table they need structures of their own to be read.
    if (!accessor->read(fileName, &structures, &associations, ignored) &&
        !accessor->read(fileName, nullptr, &associations, errors))
        return false;
    if (!hasStructure(*accessor, getStructureName()) || accessor->associations().empty())
        return false;
    result = accessor->associations().begin()->second;
    return true;
}

Stream* AccessorOvri::ExternalContent::getStream(Associations& associations)
{
    Channel* const channel = associations.findChannel(getChannelName());
    return channel ? channel->findDataStream(getStreamName()) : nullptr;
}

const Stream* AccessorOvri::ExternalContent::getStream(const Associations& associations)
{
    const Channel* const channel = associations.findChannel(getChannelName());
    return channel ? channel->findDataStream(getStreamName()) : nullptr;
}

Stream* AccessorOvri::ExternalContent::getStream(Accessor& accessor)
{
    const auto scene = accessor.associations().find(getSceneAssociationsName());
    return scene == accessor.associations().end() ? nullptr : getStream(scene->second);
}

const Stream* AccessorOvri::ExternalContent::getStream(const Accessor& accessor)
{
    const auto scene = accessor.associations().find(getSceneAssociationsName());
    return scene == accessor.associations().end() ? nullptr : getStream(scene->second);
}

bool AccessorOvri::ExternalContent::getEntry(Handle& handle, std::string& node, std::string& key,
                                             std::string& unresolvedPath, std::string& resolvedPath,
                                             std::set<std::string>& roles)
{
    std::string packedRoles;
    bool isComplete = readMember(handle, getNodeMemberName(), node);
    isComplete &= readMember(handle, getKeyMemberName(), key);
    isComplete &= readMember(handle, getUnresolvedPathMemberName(), unresolvedPath);
    isComplete &= readMember(handle, getResolvedPathMemberName(), resolvedPath);
    isComplete &= readMember(handle, getRolesMemberName(), packedRoles);
    unpackRoles(packedRoles, roles);
    return isComplete;
}

bool AccessorOvri::ExternalContent::setEntry(Handle& handle, const std::string& node, const std::string& key,
                                             const std::string& unresolvedPath, const std::string& resolvedPath,
                                             const std::set<std::string>& roles)
{
    if (roles.count("") > 0)
        return false; // packed, it would be lost
    return writeFields(handle, {{getNodeMemberName(), node},
                                {getKeyMemberName(), key},
                                {getUnresolvedPathMemberName(), unresolvedPath},
                                {getResolvedPathMemberName(), resolvedPath},
                                {getRolesMemberName(), packRoles(roles)}});
}

bool AccessorOvri::ExternalContent::updateEntry(Handle& handle, const std::string& resolvedPath)
{
    return writeFields(handle, {{getResolvedPathMemberName(), resolvedPath}});
}
} // namespace vumo::Data
