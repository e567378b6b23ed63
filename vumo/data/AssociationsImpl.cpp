#include "vumo/data/AssociationsImpl.h"

#include "vumo/data/detail/NamedSet.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
namespace
{
/// A set hands out its entries as const, for fear of their order; a channel's name changes only here and
/// in those that share it, which lookups are prepared for.
Channel* editable(const Channel& channel)
{
    return const_cast<Channel*>(&channel);
}
} // namespace

const vumo::ObjectCount AssociationsImpl::_objectsCreated = vumo::Counted<AssociationsImpl>::objectsCreated();
const vumo::ObjectCount AssociationsImpl::_objectsAlive = vumo::Counted<AssociationsImpl>::objectsAlive();

AssociationsImpl::AssociationsImpl() : mOrderedAt(detail::theRenameCount.load()) {}

AssociationsImpl::AssociationsImpl(const AssociationsImpl& other)
    : RefCounted(other),
      vumo::Counted<AssociationsImpl>(other),
      mChannels(other.mChannels.begin(), other.mChannels.end()),
      mOrderedAt(detail::theRenameCount.load())
{
}

bool AssociationsImpl::makeUnique()
{
    Set unique; // made aside: when a copy fails, all channels are as they were
    bool copied = false;
    for (const Channel& channel : mChannels)
    {
        Channel copy(channel);
        copied |= copy.makeUnique();
        unique.insert(copy);
    }
    mChannels.swap(unique);
    return copied;
}

Channel AssociationsImpl::channel(const std::string& name)
{
    if (const Channel* const present = findChannel(name))
        return *present;
    return *mChannels.insert(Channel(name));
}

Channel* AssociationsImpl::findChannel(const std::string& name) const
{
    const auto found = detail::findNamed(mChannels, name, mOrderedAt);
    return found == mChannels.end() ? nullptr : editable(*found);
}

Channel* AssociationsImpl::channelAt(unsigned int n) const
{
    const auto found = detail::entryAt(mChannels, n);
    return found == mChannels.end() ? nullptr : editable(*found);
}

void AssociationsImpl::setChannel(const Channel& channel)
{
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): copied before it may be removed below
    const Channel added(channel);
    while (removeChannel(added.name())) // renames through other objects can have given several that name
        continue;
    mChannels.insert(added);
}

bool AssociationsImpl::removeChannel(const std::string& name)
{
    const auto found = detail::findNamed(mChannels, name, mOrderedAt);
    if (found == mChannels.end())
        return false;
    mChannels.erase(found);
    return true;
}

bool AssociationsImpl::renameChannel(const std::string& oldName, const std::string& newName)
{
    const auto found = detail::findNamed(mChannels, oldName, mOrderedAt);
    if (found == mChannels.end() || findChannel(newName))
        return false;
    auto entry = mChannels.extract(found); // renamed within the set it would stand in the wrong place
    entry.value().impl()->setName(newName);
    mChannels.insert(std::move(entry));
    return true;
}

bool AssociationsImpl::Debug(const AssociationsImpl* object, vumo::Debug::Print& request)
{
    return object ? detail::debugObject("vumo::Data::AssociationsImpl", object, request)
                  : detail::debugCounts<AssociationsImpl>("vumo::Data::AssociationsImpl", request);
}

bool AssociationsImpl::Debug(const AssociationsImpl* object, vumo::Debug::Footprint& request)
{
    return object ? detail::debugObject(object, request) : detail::debugCounts<AssociationsImpl>(request);
}
} // namespace vumo::Data
