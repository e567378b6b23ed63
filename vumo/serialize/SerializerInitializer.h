#pragma once

#include "vumo/foundation/DebugFwd.h"

namespace vumo::Data
{
/// Registers the format T with its kind for as long as this object lives.
///
/// Meant for an object with static storage, so that the format can be found once its library is loaded.
template <class T>
class SerializerInitializer
{
public:
    SerializerInitializer() : mFormat(T::theFormat()) { T::registerFormat(*mFormat); }
    ~SerializerInitializer() { T::deregisterFormat(*mFormat); }

    SerializerInitializer(const SerializerInitializer&) = delete;
    SerializerInitializer& operator=(const SerializerInitializer&) = delete;

    /// Describes the format.
    static bool Debug(const SerializerInitializer* object, vumo::Debug::Print& request)
    {
        return !object || T::Debug(object->mFormat, request);
    }

    static bool Debug(const SerializerInitializer* object, vumo::Debug::Footprint& request)
    {
        return !object || T::Debug(object->mFormat, request);
    }

private:
    const T* mFormat;
};
} // namespace vumo::Data
