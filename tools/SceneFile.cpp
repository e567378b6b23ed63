#include "SceneFile.h"

#include "Text.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Channel.h"

#include <cerrno>
#include <cstring>
#include <fstream>

using namespace vumo::Data;

namespace
{
/// What the system says when the file cannot be opened; empty when it can.
std::string openingFault(const std::string& fileName)
{
    errno = 0;
    const std::ifstream file(fileName);
    return file ? "" : std::strerror(errno);
}
} // namespace

SceneFile::SceneFile(const std::string& fileName) : mFileName(fileName)
{
    std::string errors;
    mAccessor = Accessor::readFile(fileName, errors);
    if (mAccessor)
        return;
    const std::string reason = openingFault(fileName);
    throw failure(reason.empty() ? errors : errors + " (" + reason + ")");
}

Stream& SceneFile::stream(const Address& address)
{
    const auto entry = mAccessor->associations().find(address.node);
    if (entry == mAccessor->associations().end())
        throw failure("no metadata for " + nodeTitle(address.node));
    Channel* const channel = entry->second.findChannel(address.channel);
    if (!channel)
        throw failure(nodeTitle(address.node) + " has no channel " + quoted(address.channel));
    Stream* const stream = channel->findDataStream(address.stream);
    if (!stream)
        throw failure("channel " + quoted(address.channel) + " has no stream " + quoted(address.stream));
    return *stream;
}

void SceneFile::write() const
{
    std::string errors;
    if (!mAccessor->write(errors))
        throw failure(errors);
}

Failure SceneFile::failure(const std::string& message) const
{
    return Failure(mFileName + ": " + message);
}
