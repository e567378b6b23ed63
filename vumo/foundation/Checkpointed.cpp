#include "vumo/foundation/Checkpointed.h"

#include "vumo/foundation/Footprint.h"
#include "vumo/foundation/Print.h"

namespace vumo
{
std::atomic<unsigned long long> Checkpointed::sfGlobalCheckpoint = 0;
std::atomic<unsigned long long> Checkpointed::sfCheckpoint = 0;

Checkpointed::Checkpointed() : mCheckpoint(sClassChanged()) {}

Checkpointed::Checkpointed(const Checkpointed&)
    : mCheckpoint(classChangedAt(sfGlobalCheckpoint += 2)) // for the construction and for the change
{
}

Checkpointed& Checkpointed::operator=(const Checkpointed&)
{
    objectChanged();
    return *this;
}

unsigned long long Checkpointed::classCheckpoint()
{
    return sClassCheckpoint();
}

bool Checkpointed::classChangedSinceCheckpoint(const unsigned long long& stamp)
{
    return sClassChangedSinceCheckpoint(stamp);
}

unsigned long long Checkpointed::classChanged()
{
    return sClassChanged();
}

Checkpointed::~Checkpointed()
{
    sClassChanged(); // not the virtual one: what derived classes keep is gone
}

unsigned long long Checkpointed::objectChanged()
{
    mCheckpoint = classChanged();
    return mCheckpoint;
}

unsigned long long Checkpointed::globalCheckpoint()
{
    return sfGlobalCheckpoint;
}

unsigned long long Checkpointed::globalChange()
{
    return ++sfGlobalCheckpoint;
}

unsigned long long Checkpointed::sClassCheckpoint()
{
    return sfCheckpoint;
}

bool Checkpointed::sClassChangedSinceCheckpoint(const unsigned long long& stamp)
{
    return sfCheckpoint > stamp;
}

unsigned long long Checkpointed::sClassChanged()
{
    return classChangedAt(globalChange());
}

unsigned long long Checkpointed::classChangedAt(unsigned long long stamp)
{
    unsigned long long last = sfCheckpoint;
    while (last < stamp && !sfCheckpoint.compare_exchange_weak(last, stamp)) // another thread may have a later one
        continue;
    return stamp;
}

bool Checkpointed::Debug(const Checkpointed* object, vumo::Debug::Print& request)
{
    if (object)
    {
        request << "Checkpoint : " << object->mCheckpoint << "\n";
        return true;
    }
    request << "Class Checkpoint  : " << sfCheckpoint << "\n";
    request << "Global Checkpoint : " << sfGlobalCheckpoint << "\n";
    return true;
}

bool Checkpointed::Debug(const Checkpointed* object, vumo::Debug::Footprint& request)
{
    if (object)
    {
        request.addObject(object, sizeof(*object));
        return true;
    }
    request.addMember(&sfGlobalCheckpoint, sizeof(sfGlobalCheckpoint));
    request.addMember(&sfCheckpoint, sizeof(sfCheckpoint));
    return true;
}
} // namespace vumo
