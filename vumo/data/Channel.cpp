#include "vumo/data/Channel.h"

#include "vumo/data/detail/NamedSet.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
const vumo::ObjectCount Channel::_objectsCreated = vumo::Counted<Channel>::objectsCreated();
const vumo::ObjectCount Channel::_objectsAlive = vumo::Counted<Channel>::objectsAlive();

Channel::Channel() : mImpl(new ChannelImpl()) {}

Channel::Channel(const std::string& name) : mImpl(new ChannelImpl(name)) {}

Channel& Channel::operator=(const Channel& other)
{
    if (name() != other.name())
        ++detail::theRenameCount; // an associations object may hold this one, in the order of names
    mImpl = other.mImpl;
    return *this;
}

bool Channel::makeUnique()
{
    if (!mImpl->isShared())
        return false;
    mImpl = Ref<ChannelImpl>(new ChannelImpl(*mImpl));
    return mImpl->makeUnique(); // what was copied so far goes on sharing what it holds
}

const std::string& Channel::name() const
{
    return mImpl->name();
}

Stream* Channel::setDataStream(const Stream& stream)
{
    return mImpl->setDataStream(stream);
}

Stream* Channel::findDataStream(const std::string& name)
{
    return mImpl->findDataStream(name);
}

const Stream* Channel::findDataStream(const std::string& name) const
{
    return mImpl->findDataStream(name);
}

Stream* Channel::dataStream(const std::string& name)
{
    return mImpl->findDataStream(name);
}

const Stream* Channel::dataStream(const std::string& name) const
{
    return mImpl->findDataStream(name);
}

Stream* Channel::dataStream(unsigned int n)
{
    return mImpl->dataStream(n);
}

const Stream* Channel::dataStream(unsigned int n) const
{
    return mImpl->dataStream(n);
}

Stream& Channel::edit(const std::string& streamName)
{
    if (mImpl->isShared())
        mImpl = Ref<ChannelImpl>(new ChannelImpl(*mImpl)); // its streams are still shared
    Stream* stream = findDataStream(streamName);
    if (!stream)
        stream = setDataStream(Stream(*Structure::create(), streamName));
    stream->makeUnique();
    return *stream;
}

bool Channel::removeDataStream(const std::string& name)
{
    return mImpl->removeDataStream(name);
}

bool Channel::renameDataStream(const std::string& oldName, const std::string& newName)
{
    return mImpl->renameDataStream(oldName, newName);
}

unsigned int Channel::size() const
{
    return static_cast<unsigned int>(mImpl->entries().size());
}

bool Channel::addElement(const Index& index)
{
    return mImpl->addElement(index);
}

bool Channel::removeElement(const Index& index)
{
    return mImpl->removeElement(index);
}

ChannelIterator Channel::begin() const
{
    return ChannelIterator(*this, kIterBegin);
}

ChannelIterator Channel::end() const
{
    return ChannelIterator(*this, kIterEnd);
}

bool Channel::Debug(const Channel* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<Channel>("vumo::Data::Channel", request);
    if (object->empty())
    {
        request << "Empty Channel\n";
        return true;
    }
    request.beginSection(("Channel " + object->name()).c_str());
    for (const Stream* const stream : *object)
    {
        request << "Stream ";
        request.skipNextIndent(true);
        Stream::Debug(stream, request);
    }
    request.endSection();
    return true;
}

bool Channel::Debug(const Channel* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<Channel>(request);
    request.addObject(object, sizeof(*object));
    request.addObject(object->impl(), sizeof(ChannelImpl));
    for (const Stream* const stream : *object)
        Stream::Debug(stream, request);
    return true;
}
} // namespace vumo::Data
