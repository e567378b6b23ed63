#include "vumo/data/StreamDenseIteratorImpl.h"

#include "vumo/foundation/detail/DebugObject.h"

#include <typeinfo>

namespace vumo::Data
{
StreamDenseIteratorImpl::StreamDenseIteratorImpl(const StreamImplDense& stream, IterLocation location)
    : mStream(&stream),
      mPosition(location == kIterBegin ? 0 : stream.elementCount())
{
    if (mPosition < stream.elementCount()) // else there is no handle, and whoever asks for it is told so
    {
        mOwnHandle = std::make_unique<Handle>(stream.structure(), nullptr);
        mHandle = mOwnHandle.get();
        mShortWay = typeid(stream) == typeid(StreamImplDense) ? eShortWay::kBlock : eShortWay::kHandle;
        pointTo(stream.elementAddr(0));
    }
}

StreamDenseIteratorImpl::StreamDenseIteratorImpl(const StreamDenseIteratorImpl& other)
    : StreamIteratorImpl(other),
      mOwnHandle(other.mOwnHandle ? std::make_unique<Handle>(*other.mOwnHandle) : nullptr),
      mStream(other.mStream),
      mPosition(other.mPosition)
{
    mHandle = mOwnHandle.get();
    mShortWay = other.mShortWay;
}

StreamDenseIteratorImpl::~StreamDenseIteratorImpl() = default;

StreamIteratorImpl& StreamDenseIteratorImpl::operator++()
{
    const unsigned int count = mStream->elementCount(); // may have become less than the position
    if (mPosition < count)
        ++mPosition;
    pointTo(mPosition < count ? mStream->elementAddr(mPosition) : nullptr);
    return *this;
}

StreamIteratorImpl* StreamDenseIteratorImpl::operator++(int)
{
    StreamIteratorImpl* const before = clone();
    ++*this;
    return before;
}

bool StreamDenseIteratorImpl::valid() const
{
    return !mInvalid;
}

StreamIteratorImpl* StreamDenseIteratorImpl::clone() const
{
    return new StreamDenseIteratorImpl(*this);
}

Index StreamDenseIteratorImpl::index() const
{
    return mStream->indexOfPhysicalElement(mPosition);
}

const StreamImpl* StreamDenseIteratorImpl::myStream() const
{
    return mStream;
}

bool StreamDenseIteratorImpl::Debug(const StreamDenseIteratorImpl* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::StreamDenseIteratorImpl", object, request);
}

bool StreamDenseIteratorImpl::Debug(const StreamDenseIteratorImpl* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
