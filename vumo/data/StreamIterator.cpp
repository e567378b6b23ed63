#include "vumo/data/StreamIterator.h"

#include "vumo/foundation/detail/DebugObject.h"

#include <stdexcept>

namespace vumo::Data
{
namespace
{
constexpr char kNoImpl[] = "No Stream Iterator implementation";
constexpr char kNoConstImpl[] = "No const Stream Iterator implementation";
} // namespace

StreamIterator::StreamIterator() = default;

StreamIterator::StreamIterator(StreamIteratorImpl* impl) : mImpl(impl) {}

StreamIterator::StreamIterator(const StreamIterator& other) : mImpl(other.mImpl ? other.mImpl->clone() : nullptr) {}

StreamIterator& StreamIterator::operator=(const StreamIterator& other)
{
    mImpl.reset(other.mImpl ? other.mImpl->clone() : nullptr);
    return *this;
}

StreamIterator::~StreamIterator() = default;

StreamIteratorImpl* StreamIterator::impl()
{
    if (!mImpl)
        throw std::runtime_error(kNoImpl);
    return mImpl.get();
}

// Says the same as the other one: only values that are read through a const iterator are told apart.
const StreamIteratorImpl* StreamIterator::impl() const
{
    if (!mImpl)
        throw std::runtime_error(kNoImpl);
    return mImpl.get();
}

const StreamIteratorImpl& StreamIterator::constImpl() const
{
    if (!mImpl)
        throw std::runtime_error(kNoConstImpl);
    return *mImpl;
}

Index StreamIterator::index() const
{
    return constImpl().index();
}

StreamIterator StreamIterator::operator++(int)
{
    return StreamIterator((*impl())++);
}

bool StreamIterator::operator==(const StreamIterator& other) const
{
    return mImpl && other.mImpl && *mImpl == *other.mImpl;
}

bool StreamIterator::Debug(const StreamIterator* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::StreamIterator", object, request);
}

bool StreamIterator::Debug(const StreamIterator* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
