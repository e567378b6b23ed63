#pragma once

#include "vumo/data/ChannelImpl.h"
#include "vumo/data/ContainerIteratorImpl.h"
#include "vumo/foundation/DebugFwd.h"
#include "vumo/foundation/Export.h"

namespace vumo::Data
{
/// What stands behind a `ChannelIterator`: a position among the streams of a channel.
class VUMO_EXPORT ChannelIteratorImpl : public ContainerIteratorImpl<ChannelImpl>
{
public:
    using ContainerIteratorImpl<ChannelImpl>::ContainerIteratorImpl;

    static bool Debug(const ChannelIteratorImpl* object, vumo::Debug::Print& request);
    static bool Debug(const ChannelIteratorImpl* object, vumo::Debug::Footprint& request);
};
} // namespace vumo::Data
