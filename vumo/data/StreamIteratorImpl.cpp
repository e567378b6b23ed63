#include "vumo/data/StreamIteratorImpl.h"

#include "vumo/foundation/detail/DebugObject.h"

#include <stdexcept>

namespace vumo::Data
{
namespace
{
template <class T>
T* checked(T* handle)
{
    if (!handle)
        throw std::out_of_range("Iterator not at a valid position");
    return handle;
}
} // namespace

StreamIteratorImpl::~StreamIteratorImpl() = default;

Handle& StreamIteratorImpl::operator*()
{
    return *checked(mHandle);
}

const Handle& StreamIteratorImpl::operator*() const
{
    return *checked(mHandle);
}

Handle* StreamIteratorImpl::operator->()
{
    return checked(mHandle);
}

const Handle* StreamIteratorImpl::operator->() const
{
    return checked(mHandle);
}

bool StreamIteratorImpl::operator==(const StreamIteratorImpl& other) const
{
    return mInvalid == other.mInvalid && myStream() == other.myStream() && index() == other.index();
}

bool StreamIteratorImpl::Debug(const StreamIteratorImpl* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::StreamIteratorImpl", object, request);
}

bool StreamIteratorImpl::Debug(const StreamIteratorImpl* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
