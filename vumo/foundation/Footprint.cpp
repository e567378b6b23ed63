#include "vumo/foundation/Footprint.h"

#include "vumo/foundation/Print.h"

namespace vumo::Debug
{
Footprint::~Footprint() = default;

void Footprint::clear()
{
    mTotalSize = 0;
    mTotalFragments = 0;
}

void Footprint::addMember(const void*, std::size_t bytes)
{
    mTotalSize += bytes;
    ++mTotalFragments;
}

void Footprint::addObject(const void* object, std::size_t bytes)
{
    if (!mSkipObjects)
        Footprint::addMember(object, bytes); // not what a derived class does with members
}

bool Footprint::Debug(const Footprint* object, Print& request)
{
    if (object)
    {
        request << "Footprint : " << object->mTotalSize << " byte(s), " << object->mTotalFragments
                << " memory fragment(s).\n";
    }
    return true;
}

bool Footprint::Debug(const Footprint* object, Footprint& request)
{
    if (object)
        request.addObject(object, sizeof(*object));
    return true;
}
} // namespace vumo::Debug
