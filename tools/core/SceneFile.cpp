#include "core/SceneFile.h"

#include "core/Listing.h"
#include "core/Nearest.h"
#include "core/Text.h"
#include "vumo/data/Associations.h"
#include "vumo/data/Channel.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <set>
#include <sstream>

using namespace vumo::Data;
namespace fs = std::filesystem;

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
        return access(fileName.c_str(), R_OK | X_OK) == 0 ? "this is a folder; name a scene file in it" : systemFault();
    if (!S_ISREG(status.st_mode))
        return "this is not a regular file; copy what it delivers to one";
    if (!Accessor::accessorByExtension(fileName))
        return "its name is not that of a scene; give it the ending .oa if it is an ASCII scene, .ob if it is binary";
    const int rights = use == SceneFile::kLook ? R_OK : R_OK | W_OK;
    return access(fileName.c_str(), rights) == 0 ? "" : systemFault();
}

/// What an obstacle to that use ends with: what can be read and not be written to is no bad input.
eExitCode codeOfObstacle(const std::string& fileName, SceneFile::eUse use)
{
    if (use == SceneFile::kLook || !obstacle(fileName, SceneFile::kLook).empty())
        return kBadInput;
    return use == SceneFile::kRestore ? kNotRestored : kNotWritten;
}

/// What can be done about a scene that is no whole one.
std::string adviceFor(Accessor::Failure::eKind kind)
{
    if (kind == Accessor::Failure::kNotScene)
        return "\nIf this was a scene, it was cut off or damaged: restore it from a backup.";
    return kind == Accessor::Failure::kMalformed ? "\nIt was cut off or damaged: restore it from a backup." : "";
}

/// The messages of a read or write that failed, with what the system says unless they have it, or with advice.
std::string withReason(std::string messages, const Accessor& accessor)
{
    const std::string reason = accessor.failure().systemReason();
    if (reason.empty() || messages.find(reason) != std::string::npos)
        return withoutLineEnd(messages) + adviceFor(accessor.failure().kind);
    messages.erase(messages.find_last_not_of(".\n") + 1);
    return messages + ": " + reason;
}

/// What a read or a write ends with that failed so; `otherwise` for what the kind does not decide.
eExitCode codeOf(Accessor::Failure::eKind kind, eExitCode otherwise)
{
    switch (kind)
    {
    case Accessor::Failure::kLocked:
    case Accessor::Failure::kChanged:
        return kBusy;
    case Accessor::Failure::kNotRestored:
        return kNotRestored;
    default:
        return otherwise;
    }
}

std::string replaced(std::string text, const std::string& old, const std::string& other)
{
    for (std::size_t at = text.find(old); at != std::string::npos; at = text.find(old, at + other.size()))
        text.replace(at, old.size(), other);
    return text;
}

/// The names in a map, or of the parts of a node or a channel.
template <class Parts, class NameOf>
std::vector<std::string> namesOf(const Parts& parts, NameOf nameOf)
{
    std::vector<std::string> names;
    names.reserve(parts.size());
    for (const auto& part : parts)
        names.push_back(nameOf(part));
    return names;
}
} // namespace

SceneFile::SceneFile(const Session& session, const std::string& fileName, eUse use)
    : mSession(&session),
      mFileName(fileName),
      mUse(use),
      mAccessor(Accessor::accessorByExtension(fileName))
{
    const std::string fault = obstacle(fileName, use);
    if (!fault.empty())
        throw Failure(codeOfObstacle(fileName, use), escaped(mFileName) + ": " + fault);
    mAccessor->setUnread(Accessor::kKeep);
    mAccessor->setNumbers(kExact);
    mAccessor->setLockWait(session.lockWait());
}

std::string SceneFile::undoRecordOf(const std::string& fileName)
{
    std::error_code ignored;
    const bool isLink = fs::is_symlink(fs::symlink_status(fileName, ignored));
    const std::string file = isLink ? fs::weakly_canonical(fileName, ignored).string() : fileName;
    const std::string record = file + ".vumo-undo";
    return fs::exists(fs::symlink_status(record, ignored)) ? record : "";
}

const std::vector<ListedBlock>& SceneFile::list()
{
    mAccessor->setListing(Accessor::kListOnly);
    read();
    mAccessor->setListing(Accessor::kListNothing);
    if (isEmpty())
        return mAccessor->listed();
    mListing = listingOf(*mAccessor); // a kind of a plug-in is read all the same
    return mListing;
}

void SceneFile::read(const std::set<std::string>* nodes)
{
    std::string errors;
    const bool hadRecord = mUse != kRestore && !undoRecordOf(mFileName).empty();
    mAccessor->clear(); // a read alone does not release the structures of the read before it
    const bool isRead = mAccessor->read(mFileName, nullptr, nodes, errors);
    if (hadRecord && undoRecordOf(mFileName).empty())
        mSession->say(mFileName + ": a save was interrupted; it was undone, and its record removed");
    if (!isRead)
        throw readFailure(errors);
}

void SceneFile::readNode(const std::string& node)
{
    const std::set<std::string> wanted = {node};
    read(&wanted);
}

void SceneFile::readSelected(const std::vector<std::string>& patterns)
{
    if (patterns.empty())
        return read();
    const std::set<std::string> none;
    read(&none);
    std::set<std::string> wanted;
    for (const UnreadBlock& block : mAccessor->unread())
    {
        if (block.kind == UnreadBlock::kAssociations && Selection::passes(patterns, block.name))
            wanted.insert(block.name);
    }
    read(&wanted);
}

bool SceneFile::isEmpty() const
{
    return mAccessor->structures().empty() && mAccessor->associations().empty() && mAccessor->unread().empty();
}

std::string SceneFile::tail() const
{
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(kTailDigits) << mAccessor->checksum();
    return text.str();
}

std::string SceneFile::unreadableText(const UnreadBlock& block)
{
    const bool isStructure = block.kind == UnreadBlock::kStructure;
    const std::string title = isStructure ? "structure " + inQuotes(block.name) : nodeTitle(block.name);
    return title + ", in the format " + inQuotes(block.format) + ", from byte " + std::to_string(block.position) +
           ", cannot be read: " + message(block.why) + (block.why.back() == '\n' ? "" : "\n");
}

eExitCode SceneFile::tellUnreadable(Session& session) const
{
    session.flushForPeople();
    eExitCode code = kDone;
    for (const UnreadBlock& block : mAccessor->unread())
    {
        if (block.why.empty())
            continue;
        session.say(failure(kBadInput, unreadableText(block)).what());
        code = kBadInput;
    }
    return code;
}

Associations& SceneFile::node(const std::string& name)
{
    if (isEmpty())
        throw failure(kNo, kNoMetadata);
    const auto entry = mAccessor->associations().find(name);
    if (entry != mAccessor->associations().end())
        return entry->second;
    std::vector<std::string> names = namesOf(mAccessor->associations(), [](const auto& node) { return node.first; });
    for (const UnreadBlock& block : mAccessor->unread())
    {
        if (block.kind != UnreadBlock::kAssociations)
            continue;
        if (block.name == name && !block.why.empty())
            throw failure(kBadInput, unreadableText(block));
        names.push_back(block.name);
    }
    throw failure(kNo, "no metadata for " + nodeTitle(name) + didYouMean(name, names));
}

Channel& SceneFile::channel(const Address& address)
{
    const std::string& name = address.channel.value();
    Associations& channels = node(address.node);
    if (Channel* const channel = channels.findChannel(name))
        return *channel;
    throw failure(kNo, nodeTitle(address.node) + " has no channel " + inQuotes(name) +
                           didYouMean(name, namesOf(channels, [](const Channel& channel) { return channel.name(); })));
}

Stream& SceneFile::stream(const Address& address)
{
    const std::string& name = address.stream.value();
    Channel& streams = channel(address);
    if (Stream* const stream = streams.findDataStream(name))
        return *stream;
    throw failure(kNo, "channel " + inQuotes(streams.name()) + " has no stream " + inQuotes(name) +
                           didYouMean(name, namesOf(streams, [](const Stream* stream) { return stream->name(); })));
}

void SceneFile::write()
{
    std::string errors;
    if (!mAccessor->write(errors))
        throw writeFailure(errors);
}

Accessor::WriteCost SceneFile::estimateWrite() const
{
    Accessor::WriteCost cost;
    std::string errors;
    if (!mAccessor->estimateWrite(cost, errors))
        throw writeFailure(errors);
    return cost;
}

Failure SceneFile::writeFailure(const std::string& messages) const
{
    return failure(codeOf(mAccessor->failure().kind, kNotWritten), withReason(messages, *mAccessor));
}

Failure SceneFile::readFailure(const std::string& messages) const
{
    const std::string unnamed = replaced(messages, " of " + mFileName, ""); // places are in no other file
    return failure(codeOf(mAccessor->failure().kind, kBadInput), withReason(unnamed, *mAccessor));
}

Failure SceneFile::failure(eExitCode code, const std::string& message) const
{
    const std::string name = escaped(mFileName);
    const std::string text = replaced(message, mFileName, name);
    const bool isNamed = text.substr(0, text.find('\n')).find(name) != std::string::npos;
    return {code, isNamed ? text : name + ": " + text};
}
