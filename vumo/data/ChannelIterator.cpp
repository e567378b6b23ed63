#include "vumo/data/ChannelIterator.h"

#include "vumo/data/Channel.h"
#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/DebugObject.h"

#include <stdexcept>

namespace vumo::Data
{
ChannelIterator::ChannelIterator(const Channel& channel, IterLocation location) : mImpl(channel.impl(), location) {}

Stream* ChannelIterator::current(const char* operation) const
{
    if (!mImpl.valid())
        throw std::out_of_range(operation);
    return *mImpl.position();
}

Stream* ChannelIterator::operator*() const
{
    return current("ChannelImpl::Iterator::operator*");
}

Stream* ChannelIterator::operator->()
{
    return current("ChannelImpl::Iterator::operator->");
}

const Stream* ChannelIterator::operator->() const
{
    return current("const ChannelImpl::Iterator::operator->");
}

ChannelIterator& ChannelIterator::operator++()
{
    mImpl.advance();
    return *this;
}

ChannelIterator ChannelIterator::operator++(int)
{
    return *this;
}

bool ChannelIterator::Debug(const ChannelIterator* object, vumo::Debug::Print& request)
{
    if (!object)
        return true;
    std::ostream& line = request << "ChannelIterator ";
    if (!object->valid())
        line << "postioned at the end."; // spelled as it always was: users may look for it
    else if (const Stream* const stream = **object)
        line << "positioned at Stream " << stream->name() << ".";
    else
        line << "positioned at NULL Stream ";
    line << "\n";
    return true;
}

bool ChannelIterator::Debug(const ChannelIterator* object, vumo::Debug::Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}

bool ChannelIteratorImpl::Debug(const ChannelIteratorImpl* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::ChannelIteratorImpl", object, request);
}

bool ChannelIteratorImpl::Debug(const ChannelIteratorImpl* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
