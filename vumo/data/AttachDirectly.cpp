#include "vumo/data/AttachDirectly.h"

#include "vumo/foundation/detail/DebugObject.h"

namespace vumo::Data
{
AttachDirectly::AttachDirectly() = default;

AttachDirectly::AttachDirectly(const AttachDirectly& other)
    : Attach(other),
      mMetadata(std::make_unique<Associations>(other.mMetadata.get()))
{
}

AttachDirectly& AttachDirectly::operator=(const AttachDirectly& other)
{
    if (this != &other) // gives an empty object where the other has none, as a copy does
        mMetadata = std::make_unique<Associations>(other.mMetadata.get());
    return *this;
}

AttachDirectly::~AttachDirectly() = default;

Associations* AttachDirectly::editableMetadata()
{
    return mMetadata.get();
}

const Associations* AttachDirectly::metadata() const
{
    return mMetadata.get();
}

bool AttachDirectly::setMetadata(const Associations& metadata)
{
    if (&metadata != mMetadata.get())
        mMetadata = std::make_unique<Associations>(metadata); // made before the old one is released
    return true;
}

bool AttachDirectly::deleteMetadata()
{
    mMetadata.reset();
    return true;
}

bool AttachDirectly::Debug(const AttachDirectly* object, vumo::Debug::Print& request)
{
    return detail::debugObject("vumo::Data::AttachDirectly", object, request);
}

bool AttachDirectly::Debug(const AttachDirectly* object, vumo::Debug::Footprint& request)
{
    return detail::debugObject(object, request);
}
} // namespace vumo::Data
