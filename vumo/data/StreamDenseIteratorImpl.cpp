#include "vumo/data/StreamDenseIteratorImpl.h"

#include "vumo/data/StreamImplDense.h"

#include <typeinfo>

namespace vumo::Data
{
StreamDenseIteratorImpl::StreamDenseIteratorImpl(const StreamImplDense& stream, IterLocation location)
    : mOwnHandle(std::make_unique<Handle>(stream.structure(), nullptr)),
      mStream(&stream),
      mPosition(location == kIterBegin ? 0 : stream.elementCount()),
      mIsPlain(typeid(stream) == typeid(StreamImplDense))
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
      mPosition(other.mPosition),
      mIsPlain(other.mIsPlain)
{
    mHandle = other.mHandle ? mOwnHandle.get() : nullptr;
}

StreamDenseIteratorImpl::~StreamDenseIteratorImpl() = default;

char* StreamDenseIteratorImpl::slot() const
{
    if (mIsPlain)
        return mPosition < mStream->mCount ? mStream->slot(mPosition) : nullptr;
    return mPosition < mStream->elementCount() ? mStream->elementAddr(Index(mPosition)) : nullptr;
}

void StreamDenseIteratorImpl::pointToSlot()
{
    char* const address = slot();
    mOwnHandle->pointToData(address, false);
    mInvalid = !address;
}

StreamIteratorImpl& StreamDenseIteratorImpl::operator++()
{
    const unsigned int count = mIsPlain ? mStream->mCount : mStream->elementCount();
    if (mPosition < count)
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
