#pragma once

#include "vumo/foundation/ObjectShard.h"

namespace vumo
{
/// The number of objects of a class that were created, or of those that are alive, in all threads: what the statics
/// `_objectsCreated` and `_objectsAlive` of a class are. A number in every expression, exact while no other thread is
/// at work. A copy is the number at that moment.
class ObjectCount
{
public:
    enum eKind : unsigned int
    {
        kCreated,
        kAlive,
        kNumber ///< a copy
    };

    /// Counts the objects of the class at that place of `ObjectShard`.
    constexpr ObjectCount(eKind kind, unsigned int place) : mKind(kind), mPlace(place) {}

    ObjectCount(const ObjectCount& other) noexcept : mNumber(other) {}

    ObjectCount& operator=(const ObjectCount& other) noexcept
    {
        mNumber = other;
        mKind = kNumber;
        return *this;
    }

    ~ObjectCount() = default;

    operator unsigned long long() const noexcept
    {
        switch (mKind)
        {
        case kCreated:
            return ObjectShard::created(mPlace);
        case kAlive:
            return ObjectShard::alive(mPlace);
        case kNumber:
            break;
        }
        return mNumber;
    }

private:
    unsigned long long mNumber = 0;
    eKind mKind = kNumber;
    unsigned int mPlace = 0;
};
} // namespace vumo
