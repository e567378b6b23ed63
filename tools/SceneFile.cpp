#include "SceneFile.h"

#include "Text.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Channel.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <set>

using namespace vumo::Data;

namespace
{
/// What the system says about the call that has just failed, and what can be done about it.
std::string systemFault()
{
    const std::string reason = std::strerror(errno);
    return errno == EACCES ? reason + "; ask its owner for access" : reason;
}

/// What keeps the file from being used as a scene; empty when nothing is known to. Opening would wait at a pipe.
std::string obstacle(const std::string& fileName, SceneFile::eUse use)
{
    struct stat status = {};
    if (stat(fileName.c_str(), &status) != 0)
        return systemFault();
    if (S_ISDIR(status.st_mode))
        return "this is a folder; name a scene file in it";
    if (!S_ISREG(status.st_mode))
        return "this is not a regular file; copy what it delivers to one";
    if (!Accessor::accessorByExtension(fileName))
        return "its name is not that of a scene; give it the ending .oa if it is an ASCII scene, .ob if it is binary";
    const int rights = use == SceneFile::kEdit ? R_OK | W_OK : R_OK;
    return access(fileName.c_str(), rights) == 0 ? "" : systemFault();
}
/// The messages of a read or write that failed, with what the system says unless they have it.
std::string withReason(std::string messages, const Accessor& accessor)
{
    const std::string reason = accessor.failure().systemReason();
    if (reason.empty() || messages.find(reason) != std::string::npos)
        return messages;
    messages.erase(messages.find_last_not_of(".\n") + 1);
    return messages + ": " + reason;
}
} // namespace

SceneFile::SceneFile(const std::string& fileName, eUse use, const std::string* node) : mFileName(fileName)
{
    std::string errors = obstacle(fileName, use);
    if (!errors.empty())
        throw failure(errors);
    mAccessor = Accessor::accessorByExtension(fileName);
    mAccessor->setUnread(Accessor::kKeep);
    const std::set<std::string> wanted = {node ? *node : ""};
    if (!mAccessor->read(fileName, nullptr, node ? &wanted : nullptr, errors))
        throw failure(withReason(errors, *mAccessor));
}

bool SceneFile::isEmpty() const
{
    return mAccessor->structures().empty() && mAccessor->associations().empty() && mAccessor->unread().empty();
}

std::string SceneFile::unreadableText(const UnreadBlock& block)
{
    const bool isStructure = block.kind == UnreadBlock::kStructure;
    const std::string title = isStructure ? "structure " + quoted(block.name) : nodeTitle(block.name);
    return title + ", in the format " + quoted(block.format) + ", from byte " + std::to_string(block.position) +
           ", cannot be read: " + message(block.why) + (block.why.back() == '\n' ? "" : "\n");
}

Stream& SceneFile::stream(const Address& address)
{
    if (isEmpty())
        throw failure(kNoMetadata);
    const auto entry = mAccessor->associations().find(address.node);
    if (entry == mAccessor->associations().end())
    {
        for (const UnreadBlock& block : mAccessor->unread())
        {
            if (block.kind == UnreadBlock::kAssociations && block.name == address.node && !block.why.empty())
                throw failure(unreadableText(block));
        }
        throw failure("no metadata for " + nodeTitle(address.node));
    }
    Channel* const channel = entry->second.findChannel(address.channel);
    if (!channel)
        throw failure(nodeTitle(address.node) + " has no channel " + quoted(address.channel));
    Stream* const stream = channel->findDataStream(address.stream);
    if (!stream)
        throw failure("channel " + quoted(address.channel) + " has no stream " + quoted(address.stream));
    return *stream;
}

void SceneFile::write(eNumbers numbers)
{
    mAccessor->setNumbers(numbers);
    std::string errors;
    if (!mAccessor->write(errors))
        throw failure(withReason(errors, *mAccessor));
}

Failure SceneFile::failure(const std::string& message) const
{
    const bool isNamed = message.find(mFileName) != std::string::npos;
    return Failure(isNamed ? message : mFileName + ": " + message);
}
