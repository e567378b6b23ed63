#include "vumo/foundation/RefCounted.h"

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"
#include "vumo/foundation/detail/CounterPool.h"

namespace vumo
{
RefCounted::RefCounted() : RefCounted(kBesideOthers) {}

RefCounted::RefCounted(eCountPlace place)
    : mCount(detail::takeCounter(place == kApart ? detail::eRoom::kLine : detail::eRoom::kDense))
{
}

RefCounted::RefCounted(const RefCounted&) : RefCounted() {}

RefCounted& RefCounted::operator=(const RefCounted&)
{
    return *this;
}

RefCounted::~RefCounted()
{
    detail::returnCounter(mCount);
}

bool RefCounted::Debug(const RefCounted* object, vumo::Debug::Print& request)
{
    if (object)
        request << "RefCount : " << object->refCount() << "\n";
    return true;
}

bool RefCounted::Debug(const RefCounted* object, vumo::Debug::Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo
