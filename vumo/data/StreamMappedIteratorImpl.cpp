#include "vumo/data/StreamMappedIteratorImpl.h"

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
// What a const storage gives out differs from the rest only in what its user may do with it.
StreamMappedIteratorImpl::StreamMappedIteratorImpl(const StreamImplMapped& stream, IterLocation location)
    : mStream(const_cast<StreamImplMapped*>(&stream)),
      mPosition(location == kIterBegin ? mStream->mElements.begin() : mStream->mElements.end())
{
    mInvalid = mPosition == mStream->mElements.end();
    mHandle = mInvalid ? nullptr : &mPosition->second;
    mShortWay = eShortWay::kHandle;
}

StreamMappedIteratorImpl::StreamMappedIteratorImpl(const StreamMappedIteratorImpl& other)
    : StreamIteratorImpl(other),
      mStream(other.mStream),
      mPosition(other.mPosition)
{
    mShortWay = other.mShortWay;
}

StreamIteratorImpl& StreamMappedIteratorImpl::operator++()
{
    if (mInvalid)
        return *this;
    ++mPosition;
    mInvalid = mPosition == mStream->mElements.end();
    mHandle = mInvalid ? &mStream->mEndHandle : &mPosition->second; // at the end one without data
    return *this;
}

StreamIteratorImpl* StreamMappedIteratorImpl::operator++(int)
{
    StreamIteratorImpl* const before = clone();
    ++*this;
    return before;
}

bool StreamMappedIteratorImpl::valid() const
{
    return !mInvalid;
}

StreamIteratorImpl* StreamMappedIteratorImpl::clone() const
{
    return new StreamMappedIteratorImpl(*this);
}

Index StreamMappedIteratorImpl::index() const
{
    return mInvalid ? Index(kEndIndex) : mPosition->first;
}

const StreamImpl* StreamMappedIteratorImpl::myStream() const
{
    return mStream;
}

bool StreamMappedIteratorImpl::Debug(const StreamMappedIteratorImpl* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::StreamMappedIteratorImpl", object, request);
}

bool StreamMappedIteratorImpl::Debug(const StreamMappedIteratorImpl* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
