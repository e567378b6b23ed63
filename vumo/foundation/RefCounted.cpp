#include "vumo/foundation/RefCounted.h"

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

namespace vumo
{
RefCounted::RefCounted() : mCount(std::make_unique<std::atomic<std::int32_t>>(0)) {}

RefCounted::RefCounted(const RefCounted&) : RefCounted() {}

RefCounted& RefCounted::operator=(const RefCounted&)
{
    return *this;
}

RefCounted::~RefCounted() = default;

void RefCounted::ref() const
{
    mCount->fetch_add(1);
}

void RefCounted::unref() const
{
    if (mCount->fetch_sub(1) == 1)
        delete this;
}

int RefCounted::refCount() const
{
    return mCount->load();
}

bool RefCounted::isShared() const
{
    return refCount() >= 2;
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
