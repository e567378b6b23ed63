#include "vumo/data/ChannelImpl.h"

#include "vumo/data/Stream.h"
#include "vumo/data/detail/NamedSet.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <memory>
#include <stdexcept>

namespace vumo::Data
{
namespace
{
const std::string& nameOf(const Stream* stream)
{
    if (!stream)
        throw std::invalid_argument("Null Stream found in Channel.");
    return stream->name();
}

/// Takes ownership once the set holds it.
Stream* insertStream(ChannelImpl::Set& streams, std::unique_ptr<Stream> stream)
{
    streams.insert(stream.get()); // may throw, and then the stream is still owned here
    return stream.release();
}

void deleteStreams(ChannelImpl::Set& streams)
{
    for (Stream* const stream : streams)
        delete stream;
    streams.clear();
}
} // namespace

const vumo::ObjectCount ChannelImpl::_objectsCreated = vumo::Counted<ChannelImpl>::objectsCreated();
const vumo::ObjectCount ChannelImpl::_objectsAlive = vumo::Counted<ChannelImpl>::objectsAlive();

bool ChannelImpl::StreamCompare::operator()(const Stream* left, const Stream* right) const
{
    return nameOf(left) < nameOf(right);
}

bool ChannelImpl::StreamCompare::operator()(const Stream* left, const std::string& right) const
{
    return nameOf(left) < right;
}

bool ChannelImpl::StreamCompare::operator()(const std::string& left, const Stream* right) const
{
    return left < nameOf(right);
}

ChannelImpl::ChannelImpl(const std::string& name) : mName(name), mOrderedAt(detail::theRenameCount.load()) {}

ChannelImpl::ChannelImpl(const ChannelImpl& other) : ChannelImpl(other.mName)
{
    for (const Stream* const stream : other.mStreams)
        insertStream(mStreams, std::make_unique<Stream>(*stream));
}

ChannelImpl::~ChannelImpl()
{
    deleteStreams(mStreams);
}

bool ChannelImpl::makeUnique()
{
    Set unique; // made aside: when a copy fails, all streams are as they were
    bool copied = false;
    for (const Stream* const stream : mStreams)
    {
        Stream* const added = insertStream(unique, std::make_unique<Stream>(*stream));
        copied |= added->makeUnique();
    }
    mStreams.swap(unique);
    deleteStreams(unique);
    return copied;
}

void ChannelImpl::setName(const std::string& name)
{
    mName = name;
    ++detail::theRenameCount;
}

Stream* ChannelImpl::setDataStream(const Stream& stream)
{
    Stream* const present = findDataStream(stream.name());
    if (present && present == &stream) // its caller goes on using it
        return present;
    auto added = std::make_unique<Stream>(stream); // copied before it may be deleted below
    while (removeDataStream(added->name()))        // renames through other channels can have given several that name
        continue;
    return insertStream(mStreams, std::move(added));
}

Stream* ChannelImpl::findDataStream(const std::string& name) const
{
    const auto found = detail::findNamed(mStreams, name, mOrderedAt);
    return found == mStreams.end() ? nullptr : *found;
}

Stream* ChannelImpl::dataStream(unsigned int n) const
{
    const auto found = detail::entryAt(mStreams, n);
    return found == mStreams.end() ? nullptr : *found;
}

bool ChannelImpl::removeDataStream(const std::string& name)
{
    const auto found = detail::findNamed(mStreams, name, mOrderedAt);
    if (found == mStreams.end())
        return false;
    const std::unique_ptr<Stream> removed(*found);
    mStreams.erase(found);
    return true;
}

bool ChannelImpl::renameDataStream(const std::string& oldName, const std::string& newName)
{
    const auto found = detail::findNamed(mStreams, oldName, mOrderedAt);
    if (found == mStreams.end())
        return false;
    std::unique_ptr<Stream> renamed(*found);
    mStreams.erase(found);
    const bool isTaken = findDataStream(newName) != nullptr; // by another: the stream itself is out of the set
    renamed->mImpl->setName(newName);
    if (isTaken)
        return false;
    insertStream(mStreams, std::move(renamed));
    return true;
}

bool ChannelImpl::addElement(const Index& index)
{
    bool added = false;
    for (Stream* const stream : mStreams)
    {
        if (stream->indexType() == index.typeName())
            added |= stream->setElement(index, Handle(stream->structure()));
    }
    return added;
}

bool ChannelImpl::removeElement(const Index& index)
{
    bool removed = false;
    for (Stream* const stream : mStreams)
    {
        if (stream->indexType() != index.typeName())
            continue;
        removed |= stream->hasElement(index); // a removal is true without an element, too
        stream->removeElement(index);
    }
    return removed;
}

bool ChannelImpl::Debug(const ChannelImpl* object, vumo::Debug::Print& request)
{
    return object ? detail::debugObject("vumo::Data::ChannelImpl", object, request)
                  : detail::debugCounts<ChannelImpl>("vumo::Data::ChannelImpl", request);
}

bool ChannelImpl::Debug(const ChannelImpl* object, vumo::Debug::Footprint& request)
{
    return object ? detail::debugObject(object, request) : detail::debugCounts<ChannelImpl>(request);
}
} // namespace vumo::Data
