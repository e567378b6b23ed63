#include "vumo/data/Associations.h"

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
const vumo::ObjectCount Associations::_objectsCreated = vumo::Counted<Associations>::objectsCreated();
const vumo::ObjectCount Associations::_objectsAlive = vumo::Counted<Associations>::objectsAlive();

Associations::Associations() : Associations(nullptr) {}

Associations::Associations(const Associations* other)
    : mImpl(other ? other->mImpl : Ref<AssociationsImpl>(new AssociationsImpl()))
{
}

Associations* Associations::create()
{
    return new Associations();
}

bool Associations::makeUnique()
{
    if (!mImpl->isShared())
        return false;
    mImpl = Ref<AssociationsImpl>(new AssociationsImpl(*mImpl));
    return mImpl->makeUnique(); // what was copied so far goes on sharing what it holds
}

Channel Associations::channel(const std::string& name)
{
    return mImpl->channel(name);
}

Channel* Associations::findChannel(const std::string& name)
{
    return mImpl->findChannel(name);
}

const Channel* Associations::findChannel(const std::string& name) const
{
    return mImpl->findChannel(name);
}

Stream& Associations::edit(const std::string& channelName, const std::string& streamName)
{
    if (mImpl->isShared())
        mImpl = Ref<AssociationsImpl>(new AssociationsImpl(*mImpl)); // its channels are still shared
    if (!findChannel(channelName))
        setChannel(Channel(channelName));
    return findChannel(channelName)->edit(streamName);
}

void Associations::setChannel(Channel channel)
{
    mImpl->setChannel(channel);
}

bool Associations::removeChannel(const std::string& name)
{
    return mImpl->removeChannel(name);
}

bool Associations::renameChannel(const std::string& oldName, const std::string& newName)
{
    return mImpl->renameChannel(oldName, newName);
}

unsigned int Associations::size() const
{
    return static_cast<unsigned int>(mImpl->entries().size());
}

Channel* Associations::operator[](unsigned int n) const
{
    return mImpl->channelAt(n);
}

Channel Associations::channelAt(unsigned int n) const
{
    const Channel* const found = mImpl->channelAt(n);
    return found ? *found : Channel();
}

AssociationsIterator Associations::begin() const
{
    return AssociationsIterator(*this, kIterBegin);
}

AssociationsIterator Associations::end() const
{
    return AssociationsIterator(*this, kIterEnd);
}

bool Associations::Debug(const Associations* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<Associations>("vumo::Data::Associations", request);
    request.beginSection("Data Associations");
    if (object->empty())
        request << "No channels\n";
    for (const Channel& channel : *object)
        Channel::Debug(&channel, request);
    request.endSection();
    return true;
}

bool Associations::Debug(const Associations* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<Associations>(request);
    request.addObject(object, sizeof(*object));
    request.addObject(object->impl(), sizeof(AssociationsImpl));
    for (const Channel& channel : *object)
        Channel::Debug(&channel, request);
    return true;
}
} // namespace vumo::Data
