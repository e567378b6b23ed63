#include "vumo/data/Stream.h"

#include "vumo/data/StreamImplDense.h"
#include "vumo/data/StreamImplMapped.h"
#include "vumo/data/detail/ObjectCounts.h"
#include "vumo/data/detail/Renames.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

#include <stdexcept>

namespace vumo::Data
{
const std::string Stream::kDebugHex = "hex";

unsigned long long Stream::_objectsCreated = 0;
unsigned long long Stream::_objectsAlive = 0;

Stream::Stream() : mImpl(new StreamImplMapped())
{
    ++_objectsCreated;
    ++_objectsAlive;
}

Stream::Stream(const Structure& structure, const std::string& name) : mImpl(new StreamImplMapped(structure, name))
{
    ++_objectsCreated;
    ++_objectsAlive;
}

Stream::Stream(StreamImpl* impl) : mImpl(impl)
{
    if (!impl)
        throw std::invalid_argument("Null implementation of a Stream.");
    ++_objectsCreated;
    ++_objectsAlive;
}

Stream::Stream(const Stream& other) : mImpl(other.mImpl)
{
    ++_objectsCreated;
    ++_objectsAlive;
}

Stream& Stream::operator=(const Stream& other)
{
    if (name() != other.name())
        detail::countRename(); // a channel may hold this object, in the order of names
    mImpl = other.mImpl;
    return *this;
}

Stream::~Stream()
{
    --_objectsAlive;
}

bool Stream::makeUnique()
{
    if (!mImpl->isShared())
        return false;
    mImpl = Ref<StreamImpl>(mImpl->clone());
    return true;
}

unsigned int Stream::elementCount() const
{
    return mImpl->elementCount();
}

bool Stream::setElement(Index index, const Handle& handle)
{
    return mImpl->setElement(index, handle);
}

Handle Stream::element(Index index) const
{
    return mImpl->element(index);
}

bool Stream::hasElement(Index index) const
{
    return mImpl->hasElement(index);
}

bool Stream::removeElement(Index index)
{
    return mImpl->removeElement(index);
}

bool Stream::reindexElement(Index from, Index to)
{
    return mImpl->reindexElement(from, to);
}

bool Stream::swapElements(Index a, Index b)
{
    return mImpl->swapElements(a, b);
}

bool Stream::setElementRange(Index first, Index last)
{
    return mImpl->setElementRange(first, last);
}

bool Stream::clear()
{
    return mImpl->clear();
}

StreamIterator Stream::begin() const
{
    return StreamIterator(mImpl->begin());
}

StreamIterator Stream::end() const
{
    return StreamIterator(mImpl->end());
}

const std::string& Stream::name() const
{
    return mImpl->name();
}

const Structure& Stream::structure() const
{
    return mImpl->structure();
}

bool Stream::setStructure(const Structure& structure)
{
    return mImpl->setStructure(structure);
}

const std::string& Stream::indexType() const
{
    return mImpl->indexType();
}

bool Stream::setIndexType(const std::string& typeName)
{
    Index::creator(typeName);
    const Ref<StreamImpl> before = mImpl; // `typeName` may be a part of it
    if (typeName == indexType())
        return true;
    if (elementCount() > 0)
        return false;
    if (!dynamic_cast<StreamImplMapped*>(mImpl.get()))
        mImpl = Ref<StreamImpl>(new StreamImplMapped(*mImpl));
    return mImpl->setIndexType(typeName);
}

bool Stream::useDenseStorage(bool useDense)
{
    const bool isDense = dynamic_cast<StreamImplDense*>(mImpl.get()) != nullptr;
    if (isDense == useDense)
        return true;

    const bool wasEmpty = elementCount() == 0;
    StreamImpl* const impl = useDense ? static_cast<StreamImpl*>(new StreamImplDense(structure(), name()))
                                      : new StreamImplMapped(structure(), name());
    const Ref<StreamImpl> converted(impl);
    const StreamIterator last = end();
    for (StreamIterator position = begin(); position != last; ++position)
    {
        const bool isKept = converted->setElement(position.index(), *position);
        if (!isKept && position->hasData())
            return false; // there is no place for it: the stream keeps the storage that it has
    }
    mImpl = converted;
    return wasEmpty;
}

bool Stream::setUseDefaults(bool useDefaults)
{
    return mImpl->setUseDefaults(useDefaults);
}

bool Stream::useDefaults() const
{
    return mImpl->useDefaults();
}

bool Stream::mergeStream(const Stream& other)
{
    return mImpl->mergeStream(*other.mImpl);
}

bool Stream::Debug(const Stream* object, vumo::Debug::Print& request)
{
    if (!object)
        return detail::debugCounts<Stream>("vumo::Data::Stream", request);
    StreamImpl::Debug(object->mImpl.get(), request);
    return object->mImpl->debug(request);
}

bool Stream::Debug(const Stream* object, vumo::Debug::Footprint& request)
{
    if (!object)
        return detail::debugCounts<Stream>(request);
    request.addObject(object, sizeof(*object));
    return object->mImpl->debug(request);
}
} // namespace vumo::Data
