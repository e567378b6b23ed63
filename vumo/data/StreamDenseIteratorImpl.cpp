#include "vumo/data/StreamDenseIteratorImpl.h"

#include "vumo/data/StreamImplDense.h"

namespace vumo::Data
{
StreamDenseIteratorImpl::StreamDenseIteratorImpl(const StreamImplDense& stream, IterLocation location)
    : mOwnHandle(std::make_unique<Handle>(stream.structure(), nullptr)),
      mStream(&stream),
      mPosition(location == kIterBegin ? 0 : stream.elementCount())
{
    if (mPosition < stream.elementCount())
    {
        mHandle = mOwnHandle.get();
        pointToSlot();
    }
}

StreamDenseIteratorImpl::StreamDenseIteratorImpl(const StreamDenseIteratorImpl& other)
    : StreamIteratorImpl(other),
      mOwnHandle(std::make_unique<Handle>(*other.mOwnHandle)),
      mStream(other.mStream),
      mPosition(other.mPosition)
{
    mHandle = other.mHandle ? mOwnHandle.get() : nullptr;
}

StreamDenseIteratorImpl::~StreamDenseIteratorImpl() = default;

void StreamDenseIteratorImpl::pointToSlot()
{
    char* const slot = mPosition < mStream->elementCount() ? mStream->elementAddr(Index(mPosition)) : nullptr;
    mOwnHandle->pointToData(slot, false);
    mInvalid = !slot;
}

StreamIteratorImpl& StreamDenseIteratorImpl::operator++()
{
    if (mPosition < mStream->elementCount())
    {
        ++mPosition;
        pointToSlot();
    }
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
} // namespace vumo::Data
